#include "ipc/client_handlers.h"

#include <assert.h>
#include <string.h>

#include "client/dvx_client.h"
#include "context/app_context.h"
#include "core/event_manager.h"
#include "core/log.h"
#include "core/text.h"
#include "features/automode.h"
#include "features/low_power_mode.h"
#include "features/merlak_if.h"
#include "features/osprin_if.h"
#include "features/timed_mitigation.h"
#include "ipc/client_server.h"
#include "resource/fps_manager.h"
#include "resource/game_tuner.h"
#include "resource/requestor.h"

namespace {

constexpr size_t text_size = DVX_PAYLOAD_SIZE;  // of a payload's text with a NUL of its own

// Whether a "dgpc" frame-rate request above 0 is in force. Client listener only.
constinit bool dgpc_active = false;

int32_t value_of(const void *payload, int index) {
    int32_t value;
    memcpy(&value, static_cast<const char *>(payload) + sizeof(value) * static_cast<size_t>(index),
           sizeof(value));
    return value;
}

void raise_by_value(const void *payload, event_id on, event_id off) {
    notify_event(value_of(payload, 0) != 0 ? on : off);
}

void change_current_app(const char *app) {
    set_current_activity_name(app);
    log_debug(debug_powerhal, "CA : %s", get_current_activity_name());
    notify_event(EV_APP_CHANGE);
}

void handle_game(const void *payload) {
    const int32_t tuner_mode = value_of(payload, 0);
    const int32_t game_on = value_of(payload, 1);
    const int32_t fps = value_of(payload, 2);
    const int32_t ofvalue = value_of(payload, 3);

    if (game_on != 0) {
        notify_event(EV_GAME_APP_RESUMED);
        set_game_tuner_mode(tuner_mode);
    } else {
        notify_event(EV_GAME_APP_PAUSED);
    }
    set_game_mode(game_on, fps);
    set_ofmode_control(game_on, ofvalue);
    decide_merlak_state_by_ofmode(static_cast<uint32_t>(fps), static_cast<uint32_t>(ofvalue));
    decide_osprin_state(static_cast<uint32_t>(fps), static_cast<uint32_t>(ofvalue));
    log_debug(debug_powerhal, "ofvalue : %d", ofvalue);
}

void handle_window(const void *payload) {
    const char *text = static_cast<const char *>(payload);
    if (strncmp(text, get_current_window_name(), app_name_size - 1) == 0)
        return;
    set_current_window_name(text);
    log_debug(debug_powerhal, "CW : %s", get_current_window_name());
    notify_event(EV_WINDOW_CHANGED);
}

void handle_app(const void *payload) {
    char text[text_size];
    copy_text(text, static_cast<const char *>(payload));
    char *cursor = text;
    const char *package = next_token(&cursor, '/');
    change_current_app(package != nullptr ? package : text);
}

void handle_activity(const void *payload) {
    set_full_activity_name(static_cast<const char *>(payload));
    notify_event(EV_ACTIVITY_CHANGED);
    const char *package = cut_full_activity_name();
    if (package == nullptr)
        set_current_activity_name(get_full_activity_name());
    else if (strncmp(package, get_current_activity_name(), app_name_size) != 0)
        change_current_app(package);
}

void handle_game_optimizer(const void *payload) {
    log_debug(debug_powerhal, "Game Optimizer : %d", value_of(payload, 0));
    set_game_tuner_policy(value_of(payload, 0));
}

void leave_home() {
    notify_event(EV_HOME_PAUSED);
    notify_event(EV_LIVE_WALLPAPER_OFF);
}

void handle_home(const void *payload) {
    constexpr int32_t home_shown = 1;
    constexpr int32_t home_with_live_wallpaper = 2;
    char text[text_size];
    copy_text(text, static_cast<const char *>(payload));
    char *cursor = text;
    const char *state_text = next_token(&cursor, ':');
    if (state_text == nullptr) {
        set_home_activity_name(text);
        leave_home();
        return;
    }
    const int32_t state = leading_integer(state_text);
    const char *name = next_token(&cursor, ':');
    set_home_activity_name(name != nullptr ? name : "unknown");
    if (state != home_shown && state != home_with_live_wallpaper) {
        leave_home();
        return;
    }
    notify_event(EV_HOME_RESUMED);
    if (state == home_with_live_wallpaper)
        notify_event(EV_LIVE_WALLPAPER_ON);
}

// What a code of "powerhal" means: an operation of its own, or the event for a value that is not 0
// and the one for a value that is; what has no value raises the same event for both.
struct powerhal_code {
    int32_t code;
    void (*handle)(const void *payload);  // null: one of the events
    event_id on;
    event_id off;
};

constexpr powerhal_code operation(int32_t code, void (*handle)(const void *payload)) {
    return {code, handle, {}, {}};
}

constexpr powerhal_code events(int32_t code, event_id on, event_id off) {
    return {code, nullptr, on, off};
}

constexpr powerhal_code powerhal_codes[] = {
    operation(DVX_CODE_GAME, handle_game),
    events(DVX_CODE_BROWSER, EV_BROWSER_APP_RESUMED, EV_BROWSER_APP_PAUSED),
    events(DVX_CODE_SNS, EV_SNS_APP_RESUMED, EV_SNS_APP_PAUSED),
    events(DVX_CODE_GEO, EV_GEO_APP_RESUMED, EV_GEO_APP_PAUSED),
    operation(DVX_CODE_WINDOW, handle_window),
    operation(DVX_CODE_APP, handle_app),
    operation(DVX_CODE_ACTIVITY, handle_activity),
    operation(DVX_CODE_GAME_OPTIMIZER, handle_game_optimizer),
    events(DVX_CODE_INTERACTION, EV_INTERACTION, EV_INTERACTION),
    events(DVX_CODE_ROTATION, EV_ROTATION, EV_ROTATION),
    events(DVX_CODE_FPS_LOCK, EV_FPS_LOCK, EV_FPS_UNLOCK),
    events(DVX_CODE_SOFT_KEY, EV_SOFT_KEY, EV_SOFT_KEY),
    events(DVX_CODE_ENCODE, EV_ENCODE_START, EV_ENCODE_END),
    events(DVX_CODE_INCOMING_CALL, EV_INCOMING_CALL_ON, EV_INCOMING_CALL_OFF),
    events(DVX_CODE_3RD_ENCODE, EV_3RD_ENCODE_START, EV_3RD_ENCODE_END),
    operation(DVX_CODE_HOME, handle_home),
};
constexpr uint32_t powerhal_code_count = sizeof(powerhal_codes) / sizeof(powerhal_codes[0]);
static_assert(powerhal_codes[powerhal_code_count - 1].code == powerhal_code_count - 1,
              "a code is its own row");

struct client_entry {
    const char *name;
    client_handler handler;
};

constexpr client_entry clients[] = {
    {DVX_CLIENT_POWERHAL, handler_powerhal_callback},
    {DVX_CLIENT_DGPC, handler_dgpc_callback},
    {DVX_CLIENT_TMR, handler_tmr_callback},
    {DVX_CLIENT_MEDIAHAL, handler_mediahal_callback},
    {DVX_CLIENT_AUTOMODE, handler_automode_callback},
    {DVX_CLIENT_LOWPOWERMODE, handler_lpm_callback},
    {DVX_CLIENT_VRHAL, handler_vrhal_callback},
};

}  // namespace

void handler_powerhal_callback(int32_t code, const void *payload) {
    // A negative code is a large one here.
    if (static_cast<uint32_t>(code) >= powerhal_code_count) {
        log_error("Power HAL Handler: Code <%d> is not supported.", code);
        return;
    }
    const powerhal_code &row = powerhal_codes[code];
    assert(row.code == code);
    if (row.handle != nullptr)
        row.handle(payload);
    else
        raise_by_value(payload, row.on, row.off);
}

void handler_dgpc_callback(int32_t code, const void *payload) {
    if (code != DVX_CODE_FPS) {
        log_error("DGPC Handler: Code <%d> is not supported.", code);
        return;
    }
    const int32_t fps = value_of(payload, 0);
    if (fps < 1) {
        notify_event(EV_DGPC_39);
        dgpc_active = false;
    } else if (!dgpc_active) {
        notify_event(EV_DGPC_38);
        dgpc_active = true;
    }
    requestor_request_fps(requestor_dgpc, fps);
}

void handler_tmr_callback(int32_t code, const void *payload) {
    if (code != DVX_CODE_TIMED_MITIGATION) {
        log_error("TMR Handler : Code <%d> is not supported.", code);
        return;
    }
    request_timed_tmr(value_of(payload, 0));
}

void handler_mediahal_callback(int32_t code, const void *payload) {
    if (code != DVX_CODE_VIDEO_DECODE) {
        log_error("Media HAL Handler: Code <%d> is not supported.", code);
        return;
    }
    raise_by_value(payload, EV_VIDEO_DECODE_ON, EV_VIDEO_DECODE_OFF);
}

void handler_automode_callback(int32_t /*code*/, const void *payload) {
    const int32_t command = value_of(payload, 0);
    log_info("automode %d", command);
    set_switched_automode(static_cast<uint32_t>(command));
}

void handler_lpm_callback(int32_t /*code*/, const void *payload) {
    set_lpm_mode(value_of(payload, 0), value_of(payload, 1), value_of(payload, 2));
}

void handler_vrhal_callback(int32_t code, const void *payload) {
    if (code != DVX_CODE_VR) {
        log_error("VR HAL Handler: Code <%d> is not supported.", code);
        return;
    }
    raise_by_value(payload, EV_VR_ON, EV_VR_OFF);
}

int init_fevent_monitor(void) {
    for (const client_entry &client : clients)
        register_callback(client.name, client.handler);
    return 0;
}
