#include "features/osprin_if.h"

#include <errno.h>

#include <atomic>

#include "core/event_manager.h"
#include "resource/hw_library.h"

namespace {

constexpr uint32_t low_fps_max = 30;

constinit struct {
    int (*init_hw_osprin_control)(void) = nullptr;
    int (*request_osprin_control)(int on) = nullptr;
    int (*set_osprin_gov_state)(int state) = nullptr;
    std::atomic<bool> bound = false;  // publishes the three to the client listener
} library;

// The control wants to be initialised before every request.
int request(int (*operation)(int), int value) {
    const int result = library.init_hw_osprin_control();
    return result < 0 ? result : operation(value);
}

void cb_osprin_app_game() {
    request(library.request_osprin_control, 1);
}

void cb_osprin_app_none() {
    request(library.request_osprin_control, 0);
}

constexpr event_registration registrations[] = {
    {EV_MODE_GAME_DEFAULT, cb_osprin_app_game},
    {EV_MODE_GAME_TUNER, cb_osprin_app_game},
    {EV_MODE_GAME_DEFAULT_EXIT, cb_osprin_app_none},
    {EV_MODE_GAME_TUNER_EXIT, cb_osprin_app_none},
};

}  // namespace

int decide_osprin_state(uint32_t fps, uint32_t ofvalue) {
    if (!library.bound.load(std::memory_order_acquire))
        return -EINVAL;
    return request(library.set_osprin_gov_state, fps <= low_fps_max && ofvalue != 0 ? 0 : 1);
}

int init_osprin_if(void) {
    if (get_handle() != 0 ||
        hw_library_bind("init_hw_osprin_control", &library.init_hw_osprin_control) != 0 ||
        hw_library_bind("request_osprin_control", &library.request_osprin_control) != 0 ||
        hw_library_bind("set_osprin_gov_state", &library.set_osprin_gov_state) != 0)
        return -EINVAL;
    library.bound.store(true, std::memory_order_release);
    register_callbacks("osprin_if", registrations);
    return 0;
}
