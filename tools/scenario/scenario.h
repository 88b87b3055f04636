// Scenarios: happenings, one a line, with the records that must follow, as people write them. One
// parser for whoever plays them: dvxctl, the tests, the short day. docs/scenarios.md has every
// word.
#pragma once

#include <istream>
#include <string>
#include <vector>

#include "tools/recording/happening_words.h"
#include "tools/recording/record.h"

enum class pattern_kind {
    event,
    log,  // of any priority
    info,
    error,
    hw,
    service,
    prop,
    end,  // of the daemon, with its status
};
constexpr int pattern_kinds = 8;

// One record that must follow, or that must not.
struct pattern {
    pattern_kind kind;
    std::string text;  // empty with `absent`: any of the kind
    bool exact;        // quoted: to the letter, newlines at the end too
    bool open;         // whatever comes behind the text
    bool absent;       // "no": none such
};

// What must follow a happening, and those before it that expect nothing themselves.
struct expectation {
    std::vector<pattern> patterns;  // of a kind in this order, among others
    bool only[pattern_kinds] = {};  // of these kinds these records and no other
    bool nothing = false;
};

struct scenario_step {
    int line;
    std::string text;   // as it stands in the file
    std::string story;  // a line for whoever watches, instead of a happening
    happening given;    // of kind none: an expectation alone
    bool expects;
    expectation then;
};

struct scenario {
    int line;
    std::string name;
    std::vector<scenario_step> steps;
};

struct scenario_file {
    std::vector<scenario> scenarios;
    std::string error;  // empty, or what is wrong, with its line
};

// Reads a file. One without scenarios and a scenario that expects nothing are errors.
scenario_file read_scenarios(std::istream &input);

// Whether a happening may stand before the daemon's start and says what its device is like.
bool is_preparation(const happening &given);
