// The short day: a virtual device, the daemon on it, and a person's day with the phone, told step
// by step.
#pragma once

#include <string>

// Plays the day on a fresh device at `root` and checks at each step what reached the hardware. A
// step shows its messages, the app mode and what changed in effect, with `all` the whole timeline.
// With `stay` the device and its daemon stay up afterwards. The exit status: 0 when all was as it
// should.
int play_day(const std::string &root, bool stay, bool all);
