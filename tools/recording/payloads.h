// What a message's payload can be: one row a kind says how its words stand on a command line, how
// they become a message and how a message becomes them again.
#pragma once

#include <string>
#include <vector>

#include "client/dvx_client.h"
#include "tools/base/cli_fwd.h"

enum payload_kind {
    payload_none,
    payload_switch,    // on or off
    payload_number,    // any number
    payload_duration,  // milliseconds, above 0
    payload_text,
    payload_game,      // on or off, with frame rate, tuner mode and of-value
    payload_home,      // state and name
    payload_automode,  // a command
    payload_lpm,       // a level, with a cap
};

// What the words of a command line say. Every kind uses its own.
struct payload_words {
    bool on = false;
    int32_t number = 0;
    int32_t fps = 60;
    int32_t tuner = 0;
    int32_t ofvalue = 0;
    bool cap = false;
    std::string text;
};

// Refuses a text of more characters.
CLI::Validator at_most(size_t characters);

// Adds the kind's words to a command; they are stored in `given`, which outlives the parsing.
void payload_add_options(payload_kind kind, CLI::App *command, payload_words *given);

// Takes the kind's words without a command line. What is wrong with them, or an empty text.
std::string payload_take(payload_kind kind, std::vector<std::string> words, payload_words *given);

// Whether the kind's payload is a text.
bool payload_is_text(payload_kind kind);

// Fills the payload of a zeroed message.
void payload_write(payload_kind kind, const payload_words &given, dvx_message *message);

// The words that stand for the message's payload, with a blank before each. Not every payload has
// words: what payload_write makes of them tells.
payload_words payload_read(payload_kind kind, const dvx_message &message);
std::string payload_say(payload_kind kind, const payload_words &given);
