// The kernel's interval reporting, switched through the hardware library, and the two operations on
// it that the daemon exports. Bound at start-up (main); any thread may call afterwards. Nothing is
// locked.
#pragma once

#include <cstdint>

// Binds the library's three operations. 0, or -EINVAL with a log line.
int fbcn_bind(void);

// Sets the interval thresholds and logs them under debug group 7. The library's result.
int fbcn_change_thresholds(uint64_t upper, uint64_t lower);

// Exported to the libraries that the daemon loads: passed straight on to the hardware library, with
// its result; -EINVAL while it is not bound.
extern "C" int request_fbcn_en(int on);
extern "C" int request_fbcn_i_thresh(unsigned long long upper, unsigned long long lower);
