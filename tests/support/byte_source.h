// Messages and choices that bytes decide: random ones, or a fuzzer's.
#pragma once

#include <climits>
#include <cstdint>
#include <random>

#include "tools/recording/messages.h"

struct byte_source {
    const uint8_t *data;
    size_t left;

    // 0 when there are no more.
    uint8_t next() {
        if (left == 0)
            return 0;
        --left;
        return *data++;
    }
    size_t pick(size_t below) { return next() % below; }
    template <typename item, size_t count>
    item any(const item (&items)[count]) {
        return items[pick(count)];
    }
    // Often small, now and then odd.
    int32_t number() {
        constexpr int32_t odd[] = {-1, -7, 300, 1000, 65, INT_MAX, INT_MIN, 61};
        const uint8_t byte = next();
        return byte < 192 ? byte % 64 : odd[byte % 8];
    }
};

inline std::vector<uint8_t> random_bytes(std::minstd_rand *random, size_t count) {
    std::vector<uint8_t> bytes(count);
    for (uint8_t &byte : bytes)
        byte = static_cast<uint8_t>((*random)() >> 8);
    return bytes;
}

// A message of any client, now and then of none or with a code that is not its own.
inline dvx_message something_to_tell(byte_source *from) {
    constexpr const char *texts[] = {
        "com.android.chrome",  "com.kakao.talk",     "com.locnall.KimGiSa",
        "com.example.a",       "com.example.b/.M",   "com.android.gallery3d",
        "com.example.b",       "/odd//name/",        "",
        "com.zuv.videoplayer", "1:com.example.home", "2:com.android.settings"};
    const message_word &word = message_words[from->pick(message_words.size())];
    const uint8_t oddity = from->next();
    const char *client = oddity >= 253 ? "nobody" : word.client;
    const int32_t code = oddity >= 248 ? from->number() : word.code;
    if (payload_is_text(word.payload))
        return make_text_message(client, code, from->any(texts));
    return make_message(client, code,
                        {from->number(), from->number(), from->number(), from->number()});
}
