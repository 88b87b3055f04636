// Values of the properties that the daemon reads.
#include "tests/fuzz/live_daemon.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    start_live_daemon();
    happening set;
    set.kind = happening_kind::property;
    set.value.assign(reinterpret_cast<const char *>(data), size);
    for (const char *name :
         {"debug.dvxd_log.enable", "debug.dvxd_log.mode", "sys.zuv.compactmode.enabled"}) {
        set.name = name;
        take_up(set);
    }
    // Read when the screen goes off, and when a game comes to the front.
    take_up(make_panel_happening(false));
    take_up(make_panel_happening(true));
    dvx_message game;
    dvx_message_init(&game, DVX_CLIENT_POWERHAL, DVX_CODE_GAME);
    for (const int32_t on : {1, 0}) {
        game.payload.values[1] = on;
        take_up(make_message_happening(game));
    }
    simulator_take();
    return 0;
}
