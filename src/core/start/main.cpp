// The daemon's process.

#include <sys/resource.h>
#include <unistd.h>

#include "core/start/start_steps.h"
#include "platform/recording.h"

namespace {

constexpr int highest_priority = -20;

}  // namespace

int main() {
    setpriority(PRIO_PROCESS, static_cast<id_t>(getpid()), highest_priority);
    recording_begin(recorded_start);
    const int result = start_daemon();
    recording_end();
    if (result != 0)
        return -1;
    for (;;)
        pause();
}
