// What a message's payload can be: one row a kind says which words stand for it, how they become a
// message and how a message becomes them again.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "client/dvx_client.h"

enum class payload_kind {
    none,
    state,     // on or off
    number,    // any number
    duration,  // milliseconds, above 0
    text,
    game,      // on or off, with frame rate, tuner mode and of-value
    home,      // state and name
    automode,  // a command
    lpm,       // a level, with a cap
};

// What the words say. Every kind uses its own.
struct payload_words {
    bool on = false;
    int32_t number = 0;
    int32_t fps = 60;
    int32_t tuner = 0;
    int32_t ofvalue = 0;
    bool cap = false;
    std::string text;
};

struct number_word {
    const char *word;
    int32_t number;
};

// One of a kind's words: where it stands or which option it is, and what it may be. What it sets is
// the field that is not null.
struct payload_parameter {
    const char *name;  // "STATE" by its place, "--fps" by its name
    const char *help;
    bool payload_words::*flag = nullptr;  // a state where it has a place, else there or not
    int32_t payload_words::*number = nullptr;
    std::string payload_words::*text = nullptr;
    bool required = false;
    int32_t least = INT32_MIN;                // of the number
    int32_t most = INT32_MAX;                 // likewise
    std::span<const number_word> words = {};  // that stand for numbers
    size_t longest = 0;                       // characters of the text
};

// Whether a parameter has a name, and no place.
bool payload_is_option(const payload_parameter &parameter);

// A kind's parameters, those with a place in its order.
std::span<const payload_parameter> payload_parameters(payload_kind kind);

// Takes the kind's words. What is wrong with them, or an empty text.
std::string payload_take(payload_kind kind, const std::vector<std::string> &words,
                         payload_words *given);

// Whether the kind's payload is a text.
bool payload_is_text(payload_kind kind);

// Fills the payload of a zeroed message.
void payload_write(payload_kind kind, const payload_words &given, dvx_message *message);

// The words that stand for the message's payload, with a blank before each. Not every payload has
// words: what payload_write makes of them tells.
payload_words payload_read(payload_kind kind, const dvx_message &message);
std::string payload_say(payload_kind kind, const payload_words &given);
