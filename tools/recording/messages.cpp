#include "tools/recording/messages.h"

#include <string.h>

#include <algorithm>

#include "platform/host/recording_lines.h"

const std::vector<message_word> message_words = {
    {"game", DVX_CLIENT_POWERHAL, DVX_CODE_GAME, payload_kind::game,
     "A game comes to the front or leaves it"},
    {"browser", DVX_CLIENT_POWERHAL, DVX_CODE_BROWSER, payload_kind::state,
     "A browser is in front"},
    {"sns", DVX_CLIENT_POWERHAL, DVX_CODE_SNS, payload_kind::state, "A social app is in front"},
    {"geo", DVX_CLIENT_POWERHAL, DVX_CODE_GEO, payload_kind::state, "A navigation app is in front"},
    {"window", DVX_CLIENT_POWERHAL, DVX_CODE_WINDOW, payload_kind::text,
     "Name of the window in front"},
    {"app", DVX_CLIENT_POWERHAL, DVX_CODE_APP, payload_kind::text,
     "Package, or package/class, in front"},
    {"activity", DVX_CLIENT_POWERHAL, DVX_CODE_ACTIVITY, payload_kind::text,
     "package/class in front"},
    {"optimizer", DVX_CLIENT_POWERHAL, DVX_CODE_GAME_OPTIMIZER, payload_kind::state,
     "The Game Optimizer"},
    {"touch", DVX_CLIENT_POWERHAL, DVX_CODE_INTERACTION, payload_kind::none,
     "The screen is touched"},
    {"rotate", DVX_CLIENT_POWERHAL, DVX_CODE_ROTATION, payload_kind::none, "The screen is rotated"},
    {"fpslock", DVX_CLIENT_POWERHAL, DVX_CODE_FPS_LOCK, payload_kind::state,
     "The frame rate is locked"},
    {"softkey", DVX_CLIENT_POWERHAL, DVX_CODE_SOFT_KEY, payload_kind::none,
     "A soft key is pressed"},
    {"encode", DVX_CLIENT_POWERHAL, DVX_CODE_ENCODE, payload_kind::state, "The camera records"},
    {"call", DVX_CLIENT_POWERHAL, DVX_CODE_INCOMING_CALL, payload_kind::state, "A call comes in"},
    {"encode3", DVX_CLIENT_POWERHAL, DVX_CODE_3RD_ENCODE, payload_kind::state,
     "Another app's camera records"},
    {"home", DVX_CLIENT_POWERHAL, DVX_CODE_HOME, payload_kind::home,
     "The home screen is shown or left"},
    {"fps", DVX_CLIENT_DGPC, DVX_CODE_FPS, payload_kind::number,
     "Ask for a frame rate; 0: no more"},
    {"tmr", DVX_CLIENT_TMR, DVX_CODE_TIMED_MITIGATION, payload_kind::duration,
     "Ask for thermal mitigation, in milliseconds"},
    {"video", DVX_CLIENT_MEDIAHAL, DVX_CODE_VIDEO_DECODE, payload_kind::state,
     "A video is decoded"},
    {"automode", DVX_CLIENT_AUTOMODE, DVX_CODE_ANY, payload_kind::automode, "Automode command"},
    {"lpm", DVX_CLIENT_LOWPOWERMODE, DVX_CODE_ANY, payload_kind::lpm, "Low power mode"},
    {"vr", DVX_CLIENT_VRHAL, DVX_CODE_VR, payload_kind::state, "VR mode"},
};

namespace {

dvx_message start_message(const char *client, int32_t code) {
    dvx_message message;
    dvx_message_init(&message, "", code);
    // The field may be full to its last byte, as the daemon takes it.
    memcpy(message.client, client, strnlen(client, sizeof(message.client)));
    return message;
}

// Client, code and payload in numbers, or with the text.
std::string say_numbers(const dvx_message &message) {
    std::string numbers =
        std::string(message.client, strnlen(message.client, DVX_CLIENT_NAME_SIZE)) + " " +
        std::to_string(message.code);
    if (recording_message_is_text(message))
        return numbers + " --text " + message.payload.text;
    int count = DVX_PAYLOAD_VALUES;
    while (count > 0 && message.payload.values[count - 1] == 0)
        --count;
    for (int i = 0; i < count; ++i)
        numbers.append(" ").append(std::to_string(message.payload.values[i]));
    return numbers;
}

}  // namespace

dvx_message make_message(const char *client, int32_t code, const std::vector<int32_t> &values) {
    dvx_message message = start_message(client, code);
    const size_t count = std::min<size_t>(values.size(), DVX_PAYLOAD_VALUES);
    std::copy_n(values.begin(), count, message.payload.values);
    return message;
}

dvx_message make_text_message(const char *client, int32_t code, const std::string &text) {
    dvx_message message = start_message(client, code);
    dvx_message_set_text(&message, text.c_str());
    return message;
}

dvx_message make_word_message(const message_word &word, const payload_words &given) {
    dvx_message message = start_message(word.client, word.code);
    payload_write(word.payload, given, &message);
    return message;
}

std::string describe_message(const dvx_message &message) {
    for (const message_word &word : message_words) {
        const payload_words given = payload_read(word.payload, message);
        const dvx_message said = make_word_message(word, given);
        if (memcmp(&said, &message, sizeof(said)) != 0)
            continue;
        // A text stands in the words already.
        const std::string numbers =
            payload_is_text(word.payload)
                ? std::string(word.client).append(" ").append(std::to_string(word.code))
                : say_numbers(message);
        return word.word + payload_say(word.payload, given) + "  (" + numbers + ")";
    }
    return "raw " + say_numbers(message);
}
