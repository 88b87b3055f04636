// A decision of a daemon as a record: why, with which numbers, what moved from where to where, and
// whether hardware took it. Sentences, JSON, pages and tables are views of it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/explain/reasons.h"
#include "tools/recording/step.h"

// What a sentence tells: a number, or a text.
struct fact {
    const char *name;  // as the table of reasons has it
    bool is_text = false;
    double number = 0;
    std::string text;
};

struct moved_value {
    std::string what;  // a resource, "display", "app mode"
    std::string unit;  // of numbers
    std::optional<double> from, to;
    std::string from_text, to_text;  // of what is no number
};

struct decision {
    int64_t time_ns = 0;  // since the source's first step
    reason why = reason::logged;
    const log_row *row = nullptr;  // of a decision that the log tells itself
    std::vector<fact> facts;
    std::vector<moved_value> moved;
    std::optional<int32_t> answer;  // of the hardware library; below 0: refused
    int times = 1;
};

// A decision of the step; facts are added to it.
decision make_decision(const step &made_in, reason why);
void set_fact(decision *made, const char *name, double number);
void set_fact(decision *made, const char *name, const std::string &text);

// A number of the decision; none where it does not have it.
std::optional<double> find_number(const decision &made, const char *name);

// Its kind, for whoever filters, and its reason, in a word.
decision_kind decision_kind_of(const decision &made);
const char *decision_reason_word(const decision &made);

// What was decided, and on which ground or with which effect; the second may be empty.
std::string decision_sentence(const decision &made);
std::string decision_detail(const decision &made);

// Both, "+61.204  sentence" with the detail beneath, indented as far.
constexpr size_t decision_indent = 9;
std::string decision_text(const decision &made);
