#include "features/merlak_if.h"

#include "core/event_manager.h"
#include "ipc/outbound/merlak_client.h"

namespace {

constexpr uint32_t merlak_command = 10;
constexpr uint32_t low_fps_max = 30;

enum merlak_value : uint32_t {
    merlak_low_fps = 0,
    merlak_high_fps = 1,
    merlak_activity_changed = 2,
    merlak_game = 3,
    merlak_no_game = 4,
};

void cb_merlak_app_game() {
    request_to_merlak(merlak_command, merlak_game);
}

void cb_merlak_app_none() {
    request_to_merlak(merlak_command, merlak_no_game);
}

void cb_merlak_activity_change() {
    request_to_merlak(merlak_command, merlak_activity_changed);
}

constexpr event_registration registrations[] = {
    {EV_MODE_GAME_DEFAULT, cb_merlak_app_game},      {EV_MODE_GAME_TUNER, cb_merlak_app_game},
    {EV_MODE_GAME_DEFAULT_EXIT, cb_merlak_app_none}, {EV_MODE_GAME_TUNER_EXIT, cb_merlak_app_none},
    {EV_APP_CHANGE, cb_merlak_activity_change},
};

}  // namespace

int decide_merlak_state_by_ofmode(uint32_t fps, uint32_t /*ofvalue*/) {
    return request_to_merlak(merlak_command, fps > low_fps_max ? merlak_high_fps : merlak_low_fps);
}

int init_merlak_if(void) {
    register_callbacks("merlak_if", registrations);
    return 0;
}
