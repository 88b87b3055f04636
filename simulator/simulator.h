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

#include "fia/freq_tables.h"
#include "tools/recording/happening.h"
#include "tools/recording/record.h"

// The analyser's figures: the daemon's own, where nobody changes them.
struct simulated_figures {
    tmk_freq_row rows[tmk_freq_rows];
    fia_tunables tunables = target_fia_tunables;

    simulated_figures() { std::copy_n(tmk_freq_table, tmk_freq_rows, rows); }
};

// What the device is like, and what fails there.
struct simulator_setup {
    std::string image;                              // directory of the virtual device's image
    std::map<std::string, std::string> properties;  // values by name
    std::map<std::string, std::string> answers;     // of the libraries, as in hardware.conf
    std::map<std::string, service_state> services;  // by socket; those not named are up
    std::set<std::string> missing;                  // libraries by file name, entry points by name
    std::set<std::string> refused_threads;          // by name
    bool name_taken = false;                        // another daemon has the socket
    bool listen_fails = false;
    int failing_allocation = 0;  // which one from the start on, counted from 1; 0: none
    simulated_figures figures;   // of the analyser
};

// The answers and properties of a fresh virtual device.
simulator_setup simulator_fresh_device(const std::string &image);

// Starts the daemon, up to the point where all of its threads wait. 0, or -1 when it ended with the
// status of a failed start.
int simulator_start(const simulator_setup &setup);

// Instead of a start: the daemon takes up what was recorded, happening by happening from
// happening_kind::load on, on each thread when that did; time is what it was.
void simulator_replay_from(const simulator_setup &setup, int64_t first_ns);

// The one door: lets something happen, with all that follows from it before time moves on. Time
// passes where it is what happens, and with frames: timers that are due run at their end, the
// thermal engine is polled every second. In a replay every happening has its time. 0, or -1 where a
// start that is replayed fails.
int take_up(const happening &given);

// Nanoseconds since the start.
int64_t simulator_now_ns(void);

// What came out since the last call, at nanoseconds since the start.
std::vector<record> simulator_take(void);
