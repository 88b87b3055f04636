// Scenarios: happenings, one a line, with the records that must follow, as people write them. One
// parser for whoever plays them: dvxctl, the tests, the short day. docs/scenarios.md has every
// word.
#pragma once

#include <istream>
#include <string>
#include <vector>

#include "client/dvx_client.h"
#include "tools/recording/timeline.h"

enum happening_kind {
    happening_none,      // an expectation alone
    happening_start,     // of the daemon; else it starts with the first happening of its life
    happening_story,     // a line for whoever watches
    happening_message,   // a client's
    happening_time,      // passes
    happening_panel,     // a report of its node
    happening_frames,    // reports of the interval's node
    happening_report,    // a text in one of the nodes
    happening_property,  // is set
    happening_answer,    // of a library, from now on
    happening_service,   // comes up, goes down, hangs
    happening_missing,   // before the start: a library or an entry point
    happening_failure,   // before the start: a thread, an allocation, the socket
};

struct happening {
    happening_kind kind = happening_none;
    dvx_message message = {};
    bool is_text = false;  // of the message
    bool on = false;       // of the panel
    std::string name;      // of property, answer, service, node, library, thread; story
    std::string value;
    int64_t number = 0;                 // ms of time, count of frames, which allocation
    double rate = 1;                    // of frames, times real time where time is real
    std::vector<int64_t> intervals_us;  // of frames, taken in turn
};

enum pattern_kind {
    pattern_event,
    pattern_log,  // of any priority
    pattern_info,
    pattern_error,
    pattern_hw,
    pattern_service,
    pattern_prop,
    pattern_end,  // of the daemon, with its status
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
    std::string text;  // as it stands in the file
    happening what;
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

// The words of the kinds, by their number, and the first of those kinds that look at the same
// records.
extern const char *const pattern_words[pattern_kinds];
pattern_kind pattern_stream(pattern_kind kind);

// Whether a happening may stand before the daemon's start and says what its device is like.
bool is_preparation(const happening &what);

// Whether a pattern's text names an event as a record has it, "43 EV_MODE_GAME_DEFAULT": by its
// number, its name with or without EV_, or both; in small letters or capitals.
bool names_event(const std::string &wanted, const std::string &record);

// A word of a line, or a text in quotes.
struct scenario_token {
    std::string text;
    bool quoted;
};

// Splits at blanks; a text in double quotes is one word. False when a quote is not closed.
bool split_words(const std::string &text, std::vector<scenario_token> *tokens);

// Whether a library's call has that name.
bool names_call(const std::string &name);

// Reads what stands before the bar. Empty, or what is wrong with it.
std::string read_happening(const std::string &text, happening *what);

// A text without the blanks around it.
std::string trimmed_text(const std::string &text);

// Empty when the records are as expected, else what is missing or too much. What the daemon was
// told is no record.
std::string check_expectation(const expectation &then, const std::vector<timeline_entry> &records);
