// Frame intervals from a file, and playing them into a device's interval node.
#pragma once

#include <cstdint>
#include <istream>
#include <string>
#include <vector>

struct frame_file {
    std::vector<int64_t> intervals_us;
    std::string error;  // empty, or what is wrong, with its line
};

// Reads one number a line, or the column of that name where `column` is not empty. Numbers are in
// microseconds, or in units of `unit_us`. Empty lines are passed over; anything else that is not a
// number is an error, and nothing is played then.
frame_file read_frames(std::istream &input, const std::string &column, double unit_us);

// Plays intervals, `speed` times as fast as they were recorded; 0: as fast as the daemon takes
// them. 0 or a negative errno value; -ENXIO when no daemon reads the node.
int play_frames(const std::string &root, const std::vector<int64_t> &intervals_us, double speed);
