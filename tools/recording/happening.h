// A happening: one thing that a daemon takes up, or that changes around it. Scenarios, recordings,
// logs and the lab give them; the simulator and virtual devices take them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "client/dvx_client.h"
#include "platform/recording.h"

enum class happening_kind {
    none = -1,  // nothing, or nothing that is known
    // What the daemon takes up, as recordings have it.
    load = recorded_load,
    start = recorded_start,
    analyser = recorded_analyser,
    message = recorded_message,
    panel = recorded_panel,
    interval = recorded_interval,
    timers = recorded_timers,
    thermal = recorded_thermal,
    // What changes around it.
    property,
    answer,   // of a library, from now on
    service,  // comes up, goes down, hangs
    missing,  // before the start: a library or an entry point
    failure,  // a thread, an allocation, the socket
    time,     // passes
    frames,   // intervals one after the other, each after its time
};

enum class service_state {
    up,
    down,  // connecting is refused
    hung,  // its queue is full
};

// What the platform answered while a happening was taken up, where that cannot be known.
enum class answer_kind {
    clock,     // `number`: nanoseconds since the happening began
    property,  // `value` of `name`
    library,   // likewise; none: `number` is 0
    missing,   // the library or entry point `name`
    connect,   // `number`: errno value; `name`: the service's socket
    sent,      // `number`: bytes, or negative
};

struct platform_answer {
    int question = 0;  // which of the happening's, from 0
    answer_kind kind = answer_kind::clock;
    int64_t number = 0;
    std::string name;
    std::string value;
};

struct happening {
    happening_kind kind = happening_kind::none;
    service_state state = service_state::up;
    int64_t time_ns = 0;                 // of its source's clock; of time that passes: how long
    std::optional<int32_t> interval_us;  // none: `value` is what the node says
    int64_t count = 0;                   // of frames; which allocation fails, from 1
    double rate = 1;                     // of frames, times real time where time is real
    std::string name;   // of property, answer, service, library, entry point; what fails
    std::string value;  // of property and answer; a node's report; the thread that fails
    std::shared_ptr<const dvx_message> message;
    std::vector<int32_t> intervals_us;     // of frames, taken in turn
    std::vector<platform_answer> answers;  // by question
};

// Time that passes.
happening make_time_happening(int64_t duration_ns);

// A frame interval that is a number; others are reports.
happening make_interval_happening(int32_t interval_us, int64_t time_ns = 0);

// A client's message, and a report of the panel's power, at a time.
happening make_message_happening(const dvx_message &message, int64_t time_ns = 0);
happening make_panel_happening(bool on, int64_t time_ns = 0);

// Whether a panel's report says that it is on.
bool panel_is_on(const happening &panel);

// What a happening that a daemon took up is, in words.
std::string describe_happening(const happening &taken);
