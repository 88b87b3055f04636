// A step of a daemon: a happening that it took up, and the records that came of it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tools/recording/happening.h"
#include "tools/recording/record.h"

struct step {
    happening taken;      // of kind none where a log does not say what was taken
    int64_t time_ns = 0;  // since the source's first
    std::string thread;   // where what was taken is not known
    std::vector<record> records;
};

using step_taker = std::function<void(const step &taken)>;

// Whether it belongs to the daemon's start.
bool step_is_start(const step &of);

// Whether an event was raised in it.
bool step_has_event(const step &of, uint32_t event);

// The last line of that kind in it; null where there is none.
const record *step_line(const step &of, log_line line);

// The last call of that name in it; null where there is none.
const record *step_call(const step &of, const char *name);

// The worst answer to its calls of that name, and of that first argument where there is one; none
// where there was no such call, or its answer is not known.
std::optional<int32_t> step_answer(const step &of, const char *call,
                                   const std::string &argument = {});
