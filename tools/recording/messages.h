// Messages to the daemon in readable words.
#pragma once

#include <string>
#include <vector>

#include "client/dvx_client.h"
#include "tools/recording/payloads.h"

struct message_word {
    const char *word;
    const char *client;
    int32_t code;
    payload_kind payload;
    const char *help;
};

extern const std::vector<message_word> message_words;

// How long a person, or a test, is kept waiting for a message to have its whole effect.
constexpr int answer_timeout_ms = 5000;

// A client name has at most 19 characters, a text at most 255; what is longer is cut.
dvx_message make_message(const char *client, int32_t code, const std::vector<int32_t> &values);
dvx_message make_text_message(const char *client, int32_t code, const std::string &text);
dvx_message make_word_message(const message_word &word, const payload_words &given);

// A message in the words that would send it, with its numbers behind: "browser on  (powerhal 1 1)".
std::string describe_message(const dvx_message &message);
