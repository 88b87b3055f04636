// What the simulator's files share: the state that its platform works on. Nobody else includes
// this.
#pragma once

#include <vector>

#include "device/service_words.h"
#include "simulator/simulator.h"

struct simulator_state {
    simulator_setup setup;
    int64_t start_ns = 0;
    int64_t now_ns = 0;  // of the simulated monotonic clock
    std::vector<record> records;
    const device_service *connected = nullptr;  // last, by the daemon
    std::set<std::string> threads;              // started, by name
    bool replaying = false;
    // Of the happening that is replayed: when it began, what was answered in it, and how far.
    int64_t happening_ns = 0;
    const std::vector<platform_answer> *answers = nullptr;
    size_t next_answer = 0;
    int questions = 0;
};

// The simulator's one state; used by whoever has the turn.
extern simulator_state simulated;

// Adds a record, on the thread whose turn it is.
void add_record(record came);

// When something that comes out now is, since the start.
int64_t record_time_ns();

// Counts a question to the platform. What was answered to it where a recording has that, else null.
const platform_answer *take_answer(answer_kind kind);
