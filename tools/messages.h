// Messages to the daemon in readable words.
#pragma once

#include <string>
#include <vector>

#include "client/dvx_client.h"

// What a word's message carries.
enum payload_kind {
    payload_none,
    payload_switch,  // on or off
    payload_number,
    payload_text,
    payload_game,      // on or off, with frame rate, tuner mode and of-value
    payload_home,      // state and name
    payload_automode,  // a command
    payload_lpm,       // a level, with a cap
};

struct message_word {
    const char *word;
    const char *client;
    int32_t code;
    payload_kind payload;
    const char *help;
};

extern const std::vector<message_word> message_words;

dvx_message make_message(const char *client, int32_t code, const std::vector<int32_t> &values);
dvx_message make_text_message(const char *client, int32_t code, const std::string &text);

// A message as the timeline shows it: client, code, and what it carries.
std::string describe_message(const dvx_message &message, bool is_text);

// Sends a message and waits until it has had its whole effect; notes it in the messages file of the
// device at `root`, where there is one. 0 or a negative errno value.
int send_message(const dvx_message &message, bool is_text, const std::string &root);
