#include "tools/messages.h"

#include <algorithm>

#include "device/virtual_device.h"

const std::vector<message_word> message_words = {
    {"game", "powerhal", DVX_CODE_GAME, payload_game, "A game comes to the front or leaves it"},
    {"browser", "powerhal", DVX_CODE_BROWSER, payload_switch, "A browser is in front"},
    {"sns", "powerhal", DVX_CODE_SNS, payload_switch, "A social app is in front"},
    {"geo", "powerhal", DVX_CODE_GEO, payload_switch, "A navigation app is in front"},
    {"window", "powerhal", DVX_CODE_WINDOW, payload_text, "Name of the window in front"},
    {"app", "powerhal", DVX_CODE_APP, payload_text, "Package, or package/class, in front"},
    {"activity", "powerhal", DVX_CODE_ACTIVITY, payload_text, "package/class in front"},
    {"optimizer", "powerhal", DVX_CODE_GAME_OPTIMIZER, payload_switch, "The Game Optimizer"},
    {"touch", "powerhal", DVX_CODE_INTERACTION, payload_none, "The screen is touched"},
    {"rotate", "powerhal", DVX_CODE_ROTATION, payload_none, "The screen is rotated"},
    {"fpslock", "powerhal", DVX_CODE_FPS_LOCK, payload_switch, "The frame rate is locked"},
    {"softkey", "powerhal", DVX_CODE_SOFT_KEY, payload_none, "A soft key is pressed"},
    {"encode", "powerhal", DVX_CODE_ENCODE, payload_switch, "The camera records"},
    {"call", "powerhal", DVX_CODE_INCOMING_CALL, payload_switch, "A call comes in"},
    {"encode3", "powerhal", DVX_CODE_3RD_ENCODE, payload_switch, "Another app's camera records"},
    {"home", "powerhal", DVX_CODE_HOME, payload_home, "The home screen is shown or left"},
    {"fps", "dgpc", DVX_CODE_FPS, payload_number, "Ask for a frame rate; 0: no more"},
    {"tmr", "tmr", DVX_CODE_TIMED_MITIGATION, payload_number,
     "Ask for thermal mitigation, in milliseconds"},
    {"video", "mediahal", DVX_CODE_VIDEO_DECODE, payload_switch, "A video is decoded"},
    {"automode", "automode", DVX_CODE_ANY, payload_automode, "Automode command"},
    {"lpm", "lowpowermode", DVX_CODE_ANY, payload_lpm, "Low power mode"},
    {"vr", "vrhal", DVX_CODE_VR, payload_switch, "VR mode"},
};

dvx_message make_message(const char *client, int32_t code, const std::vector<int32_t> &values) {
    dvx_message message;
    dvx_message_init(&message, client, code);
    const size_t count = std::min<size_t>(values.size(), DVX_PAYLOAD_VALUES);
    std::copy_n(values.begin(), count, message.payload.values);
    return message;
}

dvx_message make_text_message(const char *client, int32_t code, const std::string &text) {
    dvx_message message;
    dvx_message_init(&message, client, code);
    dvx_message_set_text(&message, text.c_str());
    return message;
}

std::string describe_message(const dvx_message &message, bool is_text) {
    std::string words = std::string(message.client, strnlen(message.client, DVX_CLIENT_NAME_SIZE)) +
                        " " + std::to_string(message.code);
    if (is_text)
        return words + " " + message.payload.text;
    int count = DVX_PAYLOAD_VALUES;
    while (count > 1 && message.payload.values[count - 1] == 0)
        --count;
    for (int i = 0; i < count; ++i)
        words.append(" ").append(std::to_string(message.payload.values[i]));
    return words;
}

int send_message(const dvx_message &message, bool is_text, const std::string &root) {
    // A note that cannot be taken does not keep the message back.
    if (device_exists(root))
        device_append_note(root + device_messages_log, describe_message(message, is_text));
    return dvx_message_send_and_wait(&message);
}
