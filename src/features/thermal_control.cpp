#include "features/thermal_control.h"

#include <cutils/properties.h>

#include "context/app_context.h"
#include "core/event_manager.h"
#include "features/custom_config.h"
#include "features/timed_mitigation.h"
#include "resource/thermal_engine.h"

namespace {

void cb_tms_encode_start() {
    enable_thermal_config("TCONF_CAMERA", 1);
}

void cb_tms_encode_end() {
    enable_thermal_config("TCONF_CAMERA", 0);
}

void cb_tms_3rd_encode_start() {
    enable_thermal_config("TCONF_3CAMERA", 1);
}

void cb_tms_3rd_encode_end() {
    enable_thermal_config("TCONF_3CAMERA", 0);
}

void cb_tms_app_game() {
    char compact[PROPERTY_VALUE_MAX];
    if (property_get("sys.zuv.compactmode.enabled", compact, "0") > 0 && compact[0] == 't')
        enable_thermal_config("TCONF_COMPACT", 1);
    enable_thermal_config("TCONF_GAME", 1);
    enable_thermal_config("KRYO_SS_LOW_RESERVED", 1);
}

// Compact mode may have been left while the game was in front.
void cb_tms_app_none() {
    enable_thermal_config("TCONF_COMPACT", 0);
    enable_thermal_config("TCONF_GAME", 0);
    enable_thermal_config("KRYO_SS_LOW_RESERVED", 0);
}

void cb_tms_app_geo_set() {
    enable_thermal_config("TCONF_GEO", 1);
}

void cb_tms_app_geo_release() {
    enable_thermal_config("TCONF_GEO", 0);
}

void cb_tms_activity_change() {
    set_custom_config(get_full_activity_name());
}

constexpr event_registration mitigation_registrations[] = {
    {EV_APP_CHANGE, cb_app_change},
    {EV_SOFT_KEY, cb_soft_key},
};

constexpr event_registration registrations[] = {
    {EV_ENCODE_START, cb_tms_encode_start},
    {EV_ENCODE_END, cb_tms_encode_end},
    {EV_3RD_ENCODE_START, cb_tms_3rd_encode_start},
    {EV_3RD_ENCODE_END, cb_tms_3rd_encode_end},
    {EV_MODE_GAME_DEFAULT, cb_tms_app_game},
    {EV_MODE_GAME_TUNER, cb_tms_app_game},
    {EV_MODE_GAME_DEFAULT_EXIT, cb_tms_app_none},
    {EV_MODE_GAME_TUNER_EXIT, cb_tms_app_none},
    {EV_MODE_GEO, cb_tms_app_geo_set},
    {EV_MODE_GEO_EXIT, cb_tms_app_geo_release},
};

}  // namespace

int init_ts(void) {
    activate_tmr_2cluster(0, 0);
    register_callbacks("tmr", mitigation_registrations);
    register_callbacks("tms", registrations);
    if (custom_config_init() == 0)
        register_callback_for_event(EV_ACTIVITY_CHANGED, "tms", cb_tms_activity_change);
    return 0;
}
