#include "core/debug_mode.h"

#include <cutils/properties.h>

#include "core/debug_gate.h"
#include "core/event_manager.h"
#include "core/text.h"

namespace {

constexpr uint8_t all_groups = 255;

}  // namespace

void update_rt_debug_status(void) {
    char value[PROPERTY_VALUE_MAX];
    const bool enable =
        property_get("debug.dvxd_log.enable", value, "0") > 0 && leading_integer(value) != 0;

    uint8_t mask = all_groups;
    if (property_get("debug.dvxd_log.mode", value, "255") > 0) {
        const int32_t mode = leading_integer(value);
        // The low 8 bits, so that -1 asks for every group and -2 for all but the first.
        mask = mode < all_groups ? static_cast<uint8_t>(mode & 255) : all_groups;
    }
    debug_gate_set(enable, mask);
}

int init_debug_mode(void) {
    register_callback_for_event(EV_SCREEN_OFF, "runtime_debugger", update_rt_debug_status);
    update_rt_debug_status();
    return 0;
}
