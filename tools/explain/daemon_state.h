// What is known of a daemon from what it took up and what came out: the state that `dvxctl status`
// shows and that the sentences of `dvxctl why` compare. What nothing has told yet is not known.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "simulator/simulator.h"
#include "tools/recording/step.h"

enum class analyser_mode { unknown, suspended, measuring, active };

struct cap_state {
    std::string name;
    std::vector<double> hertz;  // levels, the highest first
    size_t level = 0;
    bool known = false;
};

// One requestor of the frame rate.
struct rate_request {
    std::optional<int32_t> value;  // out of the range of rates: none
    std::optional<bool> granted;
};

// Its size does not grow with what a file holds: it is copied for every step.
struct daemon_state {
    int64_t now_ns = 0;
    std::optional<int64_t> served_ns;  // since when the daemon serves
    std::optional<std::string> window, app, mode, policy;
    std::optional<bool> panel_on, covered, vr;
    // Frame rate
    std::optional<int32_t> rate;
    std::optional<int32_t> rate_winner;  // -1: nobody asks for less
    std::map<int32_t, rate_request> requests;
    std::optional<int32_t> tuner_target;  // what a tuned game wants; 0: none
    bool tuner_policy = false;
    std::optional<int32_t> image_mode;
    // Analyser
    analyser_mode analyser = analyser_mode::unknown;
    std::set<int> locks;  // reasons to be suspended, by their number
    int measured = 0;     // intervals of the measurement
    int scene = 0;        // in use, from 1; 0: not known
    int profile_share = 0;
    uint32_t profile_bucket = 0;
    std::map<int, int> scenes;  // that are remembered, by the activity's slot
    int slot = -1;              // of the activity in front; -1: not known
    std::string activity;       // its name
    std::vector<cap_state> caps;
    bool calls_seen = false;  // of the hardware library
    fia_tunables tunables = {};
    // Other features
    std::optional<int32_t> low_power_on, low_power_level;
    std::optional<bool> automode;
    std::set<std::string> thermal;
    std::optional<bool> mitigation;
    std::map<int, int64_t> timers;         // their ends by slot
    std::map<std::string, bool> services;  // whether they took the last message
};

// The start: caps at their highest, of these figures.
daemon_state daemon_state_make(const simulated_figures &figures);

// Takes a step, as a whole: a call that the hardware refused has changed nothing, but with
// `as_asked`.
void daemon_state_take(daemon_state *state, const step &taken, bool as_asked = false);

// Whether a frame rate is one that a requestor may ask for; else it asks for none.
bool rate_is_asked(int32_t fps);

// Whether a cap's level is known, and how many scenes the activity in front has.
bool daemon_state_knows(const daemon_state &state, const cap_state &cap);
int daemon_state_scenes(const daemon_state &state);

// The words for things.
const char *analyser_mode_word(analyser_mode mode);
const char *requestor_word(int32_t id);
const char *lock_word(int lock);
const char *timer_word(int slot);
