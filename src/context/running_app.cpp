#include "context/running_app.h"

#include <errno.h>
#include <pthread.h>
#include <string.h>

#include <bit>
#include <new>

#include "context/app_context.h"
#include "core/event_manager.h"
#include "core/log.h"

namespace {

// Categories by the number of their bit in the app mask, which is also the mode that each means.
enum category : uint32_t {
    category_game_default = 0,
    category_game_tuner = 1,
    category_geo = 2,
    category_browser = 3,
    category_sns = 4,
    category_gallery = 5,
    category_home = 8,
};
constexpr uint32_t category_count = 9;

// Who holds a category. One that two sources hold stays set until both have let go.
enum source : uint32_t {
    source_game_default = 0x1,
    source_game_tuner = 0x2,
    source_geo = 0x4,
    source_browser = 0x8,
    source_sns = 0x10,
    source_gallery = 0x20,
    source_activity_trigger = 0x40,
    source_live_wallpaper = 0x80,
    source_home = 0x100,
};

struct mode_events {
    int32_t mode;
    event_id exit;
    event_id enter;
};

constexpr mode_events no_specific_app = {mode_none, EV_MODE_NONE_EXIT, EV_MODE_NONE};

constexpr mode_events events_by_mode[] = {
    {mode_game_default, EV_MODE_GAME_DEFAULT_EXIT, EV_MODE_GAME_DEFAULT},
    {mode_game_tuner, EV_MODE_GAME_TUNER_EXIT, EV_MODE_GAME_TUNER},
    {mode_geo, EV_MODE_GEO_EXIT, EV_MODE_GEO},
    {mode_browser, EV_MODE_BROWSER_EXIT, EV_MODE_BROWSER},
    {mode_sns, EV_MODE_SNS_EXIT, EV_MODE_SNS},
    {mode_gallery, EV_MODE_GALLERY_EXIT, EV_MODE_GALLERY},
    {mode_home, EV_MODE_HOME_EXIT, EV_MODE_HOME},
};

// A home activity with one of these in its name is a settings screen, not the home screen.
constexpr char settings_screens[][app_name_size] = {
    "settings",
    "HomeSettingsPrefActivity",
    "WallpaperListActivity",
    "livepicker.LiveWallpaperActivity",
    "wallpaperpicker.WallpaperChooserActivity",
};

struct running_app_record {
    uint32_t app_mask;
    int32_t current_mode;    // of the latest evaluation
    int32_t announced_mode;  // whose enter event was raised last
    int32_t floating_window;
    int32_t window_mismatch;
    int32_t incoming_call;
    int32_t screen_off;
    int32_t game_tuner;
    int32_t live_wallpaper;
    uint32_t sources[category_count];
};

// The record is created once, before anyone reports, and guarded by `lock`.
constinit struct {
    pthread_mutex_t lock = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;
    running_app_record *record = nullptr;
} running_app;

bool holds(category held) {
    return (running_app.record->app_mask & (1u << held)) != 0;
}

void add_source(category held, source by) {
    running_app.record->sources[held] |= by;
    running_app.record->app_mask |= 1u << held;
}

void remove_source(category held, source by) {
    running_app.record->sources[held] &= ~static_cast<uint32_t>(by);
    if (running_app.record->sources[held] == 0)
        running_app.record->app_mask &= ~(1u << held);
}

const mode_events *events_of(int32_t mode) {
    for (const mode_events &events : events_by_mode)
        if (events.mode == mode)
            return &events;
    return &no_specific_app;
}

void announce_exit(int32_t mode) {
    notify_event(events_of(mode)->exit);
    if (mode == mode_home)
        notify_event(EV_MODE_HOME_LIVE_WALLPAPER_EXIT);
}

void announce_enter(int32_t mode) {
    notify_event(events_of(mode)->enter);
    if (mode == mode_home && running_app.record->live_wallpaper >= 1)
        notify_event(EV_MODE_HOME_LIVE_WALLPAPER);
}

// Runs one report: its update and what follows from it are one step.
template <typename operation>
void report(operation update) {
    pthread_mutex_lock(&running_app.lock);
    update(running_app.record);
    notify_running_app_events();
    pthread_mutex_unlock(&running_app.lock);
}

void report_added(category held, source by) {
    report([=](running_app_record *) { add_source(held, by); });
}

void report_removed(category held, source by) {
    report([=](running_app_record *) { remove_source(held, by); });
}

bool home_is_settings_screen() {
    for (const char *name : settings_screens)
        if (strstr(get_home_activity_name(), name) != nullptr)
            return true;
    return false;
}

void cb_ra_game_app_resumed() {
    report([](running_app_record *record) {
        if (record->game_tuner != 0)
            add_source(category_game_tuner, source_game_tuner);
        else
            add_source(category_game_default, source_game_default);
    });
}

void cb_ra_game_app_paused() {
    report([](running_app_record *) {
        remove_source(category_game_default, source_game_default);
        remove_source(category_game_tuner, source_game_tuner);
    });
}

void cb_ra_game_tuner_mode_on() {
    report([](running_app_record *record) {
        record->game_tuner = 1;
        if (holds(category_game_default)) {
            remove_source(category_game_default, source_game_default);
            add_source(category_game_tuner, source_game_tuner);
        }
    });
}

void cb_ra_game_tuner_mode_off() {
    report([](running_app_record *record) {
        record->game_tuner = 0;
        if (holds(category_game_tuner)) {
            remove_source(category_game_tuner, source_game_tuner);
            add_source(category_game_default, source_game_default);
        }
    });
}

void cb_ra_geo_app_resumed() {
    report_added(category_geo, source_geo);
}

void cb_ra_geo_app_paused() {
    report_removed(category_geo, source_geo);
}

void cb_ra_browser_app_resumed() {
    report_added(category_browser, source_browser);
}

void cb_ra_browser_app_paused() {
    report_removed(category_browser, source_browser);
}

void cb_ra_sns_app_resumed() {
    report_added(category_sns, source_sns);
}

void cb_ra_sns_app_paused() {
    report_removed(category_sns, source_sns);
}

void cb_ra_at_geo_resumed() {
    report_added(category_geo, source_activity_trigger);
}

void cb_ra_at_geo_paused() {
    report_removed(category_geo, source_activity_trigger);
}

void cb_ra_at_browser_resumed() {
    report_added(category_browser, source_activity_trigger);
}

void cb_ra_at_browser_paused() {
    report_removed(category_browser, source_activity_trigger);
}

void cb_ra_at_sns_resumed() {
    report_added(category_sns, source_activity_trigger);
}

void cb_ra_at_sns_paused() {
    report_removed(category_sns, source_activity_trigger);
}

void cb_ra_at_gallery_app_resumed() {
    report_added(category_gallery, source_gallery);
}

void cb_ra_at_gallery_app_paused() {
    report_removed(category_gallery, source_gallery);
}

void cb_ra_home_resumed() {
    report([](running_app_record *) {
        if (home_is_settings_screen())
            remove_source(category_home, source_home);
        else
            add_source(category_home, source_home);
    });
}

void cb_ra_home_paused() {
    report_removed(category_home, source_home);
}

void cb_ra_live_wallpaper_on() {
    report([](running_app_record *record) {
        record->live_wallpaper = home_is_settings_screen() ? 0 : 1;
        if (record->live_wallpaper != 0)
            add_source(category_home, source_live_wallpaper);
        else
            remove_source(category_home, source_live_wallpaper);
    });
}

void cb_ra_live_wallpaper_off() {
    report([](running_app_record *record) {
        record->live_wallpaper = 0;
        remove_source(category_home, source_live_wallpaper);
    });
}

void cb_ra_float_window_on() {
    report([](running_app_record *record) { record->floating_window = 1; });
}

void cb_ra_float_window_off() {
    report([](running_app_record *record) { record->floating_window = 0; });
}

void cb_ra_screen_off() {
    report([](running_app_record *record) { record->screen_off = 1; });
}

void cb_ra_screen_on() {
    report([](running_app_record *record) { record->screen_off = 0; });
}

// A report that decides whether something covers the app. The event that says so is raised without
// the lock: the evaluation follows in its callback.
template <typename operation>
void report_cover(operation update) {
    pthread_mutex_lock(&running_app.lock);
    update(running_app.record);
    const bool covered =
        running_app.record->incoming_call == 1 || running_app.record->window_mismatch == 1;
    pthread_mutex_unlock(&running_app.lock);
    notify_event(covered ? EV_FLOATING_WINDOW_ON : EV_FLOATING_WINDOW_OFF);
}

void cb_ra_activity_changed() {
    report_cover([](running_app_record *record) {
        record->window_mismatch =
            strstr(get_full_activity_name(), get_current_window_name()) == nullptr;
    });
}

void cb_ra_window_changed() {
    report_cover([](running_app_record *record) {
        record->window_mismatch =
            strstr(get_current_window_name(), get_current_activity_name()) == nullptr;
    });
}

void cb_ra_incomming_call_on() {
    report_cover([](running_app_record *record) { record->incoming_call = 1; });
}

void cb_ra_incomming_call_off() {
    report_cover([](running_app_record *record) { record->incoming_call = 0; });
}

constexpr event_registration registrations[] = {
    {EV_GAME_APP_RESUMED, cb_ra_game_app_resumed},
    {EV_GAME_APP_PAUSED, cb_ra_game_app_paused},
    {EV_GEO_APP_RESUMED, cb_ra_geo_app_resumed},
    {EV_GEO_APP_PAUSED, cb_ra_geo_app_paused},
    {EV_BROWSER_APP_RESUMED, cb_ra_browser_app_resumed},
    {EV_BROWSER_APP_PAUSED, cb_ra_browser_app_paused},
    {EV_SNS_APP_RESUMED, cb_ra_sns_app_resumed},
    {EV_SNS_APP_PAUSED, cb_ra_sns_app_paused},
    {EV_FLOATING_WINDOW_ON, cb_ra_float_window_on},
    {EV_FLOATING_WINDOW_OFF, cb_ra_float_window_off},
    {EV_SCREEN_OFF, cb_ra_screen_off},
    {EV_SCREEN_ON, cb_ra_screen_on},
    {EV_GAME_TUNER_MODE_ON, cb_ra_game_tuner_mode_on},
    {EV_GAME_TUNER_MODE_OFF, cb_ra_game_tuner_mode_off},
    {EV_ACTIVITY_CHANGED, cb_ra_activity_changed},
    {EV_WINDOW_CHANGED, cb_ra_window_changed},
    {EV_INCOMING_CALL_ON, cb_ra_incomming_call_on},
    {EV_INCOMING_CALL_OFF, cb_ra_incomming_call_off},
    {EV_LIVE_WALLPAPER_ON, cb_ra_live_wallpaper_on},
    {EV_LIVE_WALLPAPER_OFF, cb_ra_live_wallpaper_off},
    {EV_HOME_RESUMED, cb_ra_home_resumed},
    {EV_HOME_PAUSED, cb_ra_home_paused},
    {EV_AT_GEO_ON, cb_ra_at_geo_resumed},
    {EV_AT_GEO_OFF, cb_ra_at_geo_paused},
    {EV_AT_BROWSER_ON, cb_ra_at_browser_resumed},
    {EV_AT_BROWSER_OFF, cb_ra_at_browser_paused},
    {EV_AT_SNS_ON, cb_ra_at_sns_resumed},
    {EV_AT_SNS_OFF, cb_ra_at_sns_paused},
    {EV_AT_GALLERY_ON, cb_ra_at_gallery_app_resumed},
    {EV_AT_GALLERY_OFF, cb_ra_at_gallery_app_paused},
};

}  // namespace

int32_t get_available_app_mode(void) {
    pthread_mutex_lock(&running_app.lock);
    const running_app_record record = *running_app.record;
    log_info("System FW:%d IC:%d SO:%d GT:%d CAPP:%d APP:%x\n", record.window_mismatch,
             record.incoming_call, record.screen_off, record.game_tuner, record.current_mode,
             record.app_mask);
    pthread_mutex_unlock(&running_app.lock);

    if (record.floating_window != 0 || record.screen_off != 0 ||
        !std::has_single_bit(record.app_mask))
        return mode_none;
    return std::countr_zero(record.app_mask);
}

void notify_running_app_events(void) {
    pthread_mutex_lock(&running_app.lock);
    running_app_record *record = running_app.record;
    const int32_t mode = get_available_app_mode();
    record->current_mode = mode;
    if (mode != record->announced_mode) {
        announce_exit(record->announced_mode);
        record->announced_mode = mode;
    }
    announce_enter(mode);
    pthread_mutex_unlock(&running_app.lock);
}

int init_el(void) {
    running_app.record = new (std::nothrow) running_app_record{};
    if (running_app.record == nullptr) {
        log_error("Failed to initialize event_listener");
        return -ENOMEM;
    }
    running_app.record->current_mode = mode_none;
    register_callbacks("running_app", registrations);
    return 0;
}
