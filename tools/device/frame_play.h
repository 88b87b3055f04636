// Playing intervals into the node that a device's daemon reads them from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// How far a play has come.
struct frame_run {
    size_t played = 0;
    double played_us = 0;      // as recorded
    int error = 0;             // negative errno value; -ENXIO: no daemon reads the node,
                               // -EBUSY: somebody plays already,
                               // -ETIMEDOUT: it has taken none for `frame_patience_ms`
    bool interrupted = false;  // by who is told
};

// How long a daemon may take none of the intervals that wait for it.
constexpr int frame_patience_ms = 3000;

// Plays intervals, `speed` times as fast as they were recorded; 0: as fast as the daemon takes
// them. Returns when the daemon has read all of them, or with what stopped it. `told`, where there
// is one, hears how far it came before each interval and after a signal; false ends the play.
frame_run frame_play(const std::string &root, const std::vector<int64_t> &intervals_us,
                     double speed, const std::function<bool(const frame_run &)> &told);
