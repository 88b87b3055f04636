// The whole daemon in this process, on a platform that exists in memory alone: a clock that moves
// only when told or when the daemon itself sleeps, threads that run in turn, and records of
// everything that comes out, in their order. The same happenings give the same records, byte for
// byte.
//
// The hardware libraries are opened and bound as on a device, those of the virtual device's image;
// the stand-ins hand their calls to the simulator. One process holds one daemon: whoever needs many
// forks before it starts one. One thread calls; nothing is locked.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "client/dvx_client.h"
#include "fia/freq_tables.h"
#include "platform/recording.h"

enum record_kind {
    record_event,     // "43 EV_MODE_GAME_DEFAULT", while the gate of debug lines is open
    record_log,       // any other line but those of callbacks, as it was logged, with its newline
    record_call,      // "request_fps 45", of a hardware library
    record_message,   // "frame-rate service  category game", to another service
    record_property,  // "sys.zuv.vtmode 1"
};

struct simulator_record {
    int64_t time_ns;  // since the start
    record_kind kind;
    const char *thread;  // its name as `top -H` would show it; "dvxd" for start-up
    int priority;        // of a log line
    std::string tag;     // of a log line
    std::string text;
};

enum simulated_service {
    service_up,
    service_down,  // connecting is refused
    service_hung,  // its queue is full
};

// The analyser's figures: the daemon's own, where nobody changes them.
struct simulated_figures {
    tmk_freq_row rows[tmk_freq_rows];
    fia_tunables tunables = target_fia_tunables;

    simulated_figures() { std::copy_n(tmk_freq_table, tmk_freq_rows, rows); }
};

// What the device is like, and what fails there.
struct simulator_setup {
    std::string image;                                  // directory of the virtual device's image
    std::map<std::string, std::string> properties;      // values by name
    std::map<std::string, std::string> answers;         // of the libraries, as in hardware.conf
    std::map<std::string, simulated_service> services;  // by socket; those not named are up
    std::set<std::string> missing;          // libraries by file name, entry points by name
    std::set<std::string> refused_threads;  // by name
    bool name_taken = false;                // another daemon has the socket
    bool listen_fails = false;
    int failing_allocation = 0;  // which one from the start on, counted from 1; 0: none
    simulated_figures figures;   // of the analyser
};

// The answers and properties of a fresh virtual device.
simulator_setup simulator_fresh_device(const std::string &image);

// Starts the daemon, up to the point where all of its threads wait. 0, or -1 when it ended with the
// status of a failed start.
int simulator_start(const simulator_setup &setup);

// One happening, with all that follows from it before time moves on: a client's message; a report
// of the panel's node, as text, and of the interval's, as text or as microseconds.
void simulator_message(const dvx_message &message);
void simulator_panel_report(const std::string &report);
void simulator_interval_report(const std::string &report);
void simulator_interval(int32_t interval_us);

// What the device is like from now on.
void simulator_set_property(const std::string &name, const std::string &value);
void simulator_set_answer(const std::string &name, const std::string &value);
void simulator_set_service(const std::string &socket, simulated_service state);

// Lets time pass. Timers that are due run at their end, the thermal engine is polled every second.
void simulator_advance_ns(int64_t duration_ns);

// What the platform answered in a happening that was recorded, where that cannot be known.
enum recorded_answer_kind {
    answer_clock,     // `number`: nanoseconds since the happening began
    answer_property,  // `value` of `name`
    answer_library,   // likewise; none: `number` is 0
    answer_missing,   // the library or entry point `name`
    answer_connect,   // `number`: errno value
    answer_sent,      // `number`: bytes, or negative
};

struct recorded_answer {
    int question = 0;  // which of the happening's, from 0
    recorded_answer_kind kind = answer_clock;
    int64_t number = 0;
    std::string name;
    std::string value;
};

struct recorded_happening {
    recorded_kind kind = recorded_load;
    int64_t time_ns = 0;  // of the recorded clock
    dvx_message message = {};
    std::string report;
    std::vector<recorded_answer> answers;  // by question
};

// Instead of a start: the daemon takes up what was recorded, happening by happening from
// recorded_load on, on each thread when that did; time is what it was. -1 when its start fails.
void simulator_replay_from(const simulator_setup &setup, int64_t first_ns);
int simulator_replay(const recorded_happening &what);

// The same for an interval in whose happening nothing was asked.
void simulator_replay_interval(int64_t time_ns, int32_t interval_us);

// Nanoseconds since the start.
int64_t simulator_now_ns(void);

// What came out since the last call.
std::vector<simulator_record> simulator_take(void);
