/* Stand-in for the performance extension library. */
#include "standin.h"

int perf_lock_use_profile(int handle, int profile);

int perf_lock_use_profile(int handle, int profile) {
    standin_record("perf_lock_use_profile", " %d %d", handle, profile);
    return standin_answer("perf_lock_use_profile", 0);
}
