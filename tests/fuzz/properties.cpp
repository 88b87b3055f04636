// Values of the properties that the daemon reads.
#include "tests/fuzz/live_daemon.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    start_live_daemon();
    const std::string value(reinterpret_cast<const char *>(data), size);
    for (const char *name :
         {"debug.dvxd_log.enable", "debug.dvxd_log.mode", "sys.zuv.compactmode.enabled"})
        simulator_set_property(name, value);
    // Read when the screen goes off, and when a game comes to the front.
    simulator_panel_report("panel_power_on = 0\n");
    simulator_panel_report("panel_power_on = 1\n");
    dvx_message game;
    dvx_message_init(&game, DVX_CLIENT_POWERHAL, DVX_CODE_GAME);
    for (const int32_t on : {1, 0}) {
        game.payload.values[1] = on;
        simulator_message(game);
    }
    simulator_take();
    return 0;
}
