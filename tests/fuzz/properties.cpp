// Values of the properties that the daemon reads.
#include <stdlib.h>

#include <cstdint>
#include <fstream>
#include <string>

#include "core/event_manager.h"
#include "tests/fuzz/live_daemon.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    start_live_daemon();
    for (const char *name :
         {"debug.dvxd_log.enable", "debug.dvxd_log.mode", "sys.zuv.compactmode.enabled"})
        std::ofstream(std::string(getenv("DVXD_ROOT")) + "/properties/" + name, std::ios::binary)
            .write(reinterpret_cast<const char *>(data), static_cast<std::streamsize>(size));
    notify_event(EV_SCREEN_OFF);
    notify_event(EV_MODE_GAME_DEFAULT);
    notify_event(EV_SCREEN_ON);
    return 0;
}
