// What the executable sets up while it is loaded, before main, and takes down at exit.

#include "core/start/start_steps.h"
#include "features/profile_manager.h"
#include "platform/recording.h"

namespace {

constexpr int first = 101;  // the earliest priority that an executable may use

__attribute__((constructor(first))) void set_up() {
    recording_begin(recorded_load);
    prepare_daemon();
    recording_end();
}

__attribute__((destructor)) void take_down() {
    cleanup_profile_manager_ext();
}

}  // namespace
