// What the executable sets up while it is loaded, before main, in this order, and takes down at
// exit.

#include "features/low_power_mode.h"
#include "features/profile_manager.h"

namespace {

constexpr int first = 101;  // the earliest priorities that an executable may use
constexpr int second = 102;

__attribute__((constructor(first))) void open_extension_library() {
    init_profile_manager_ext();
}

__attribute__((constructor(second))) void bind_thermal_engine() {
    init_lpm_config();
}

__attribute__((destructor)) void close_extension_library() {
    cleanup_profile_manager_ext();
}

}  // namespace
