#include "features/property_worker.h"

#include <cutils/properties.h>
#include <pthread.h>

#include <cstdint>

#include "core/event_manager.h"

namespace {

constexpr char property_name[] = "sys.zuv.vtmode";

enum game_flag : uint8_t { game_flag_default = 1, game_flag_tuner = 2 };

// Guarded by `lock`.
constinit struct {
    pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
    uint8_t game_flags = 0;
    uint8_t game_published = 0;
    uint8_t geo_active = 0;
} worker;

void publish() {
    property_set(property_name,
                 worker.game_published != 0 ? "1" : (worker.geo_active != 0 ? "2" : "0"));
}

// What is published of games changes with the first flag set and the last one cleared.
void change_game(game_flag flag, bool on) {
    pthread_mutex_lock(&worker.lock);
    worker.game_flags =
        static_cast<uint8_t>(on ? worker.game_flags | flag : worker.game_flags & ~flag);
    const uint8_t published = worker.game_flags != 0 ? 1 : 0;
    if (worker.game_published != published) {
        worker.game_published = published;
        publish();
    }
    pthread_mutex_unlock(&worker.lock);
}

void change_geo(uint8_t active) {
    pthread_mutex_lock(&worker.lock);
    if (worker.geo_active != active) {
        worker.geo_active = active;
        publish();
    }
    pthread_mutex_unlock(&worker.lock);
}

void cb_pw_game_app_resumed() {
    change_game(game_flag_default, true);
}

void cb_pw_game_tuner_app_resumed() {
    change_game(game_flag_tuner, true);
}

void cb_pw_game_app_paused() {
    change_game(game_flag_default, false);
}

void cb_pw_game_tuner_app_paused() {
    change_game(game_flag_tuner, false);
}

void cb_pw_geo_app_resumed() {
    change_geo(1);
}

void cb_pw_geo_app_paused() {
    change_geo(0);
}

constexpr event_registration registrations[] = {
    {EV_MODE_GAME_DEFAULT, cb_pw_game_app_resumed},
    {EV_MODE_GAME_TUNER, cb_pw_game_tuner_app_resumed},
    {EV_MODE_GAME_DEFAULT_EXIT, cb_pw_game_app_paused},
    {EV_MODE_GAME_TUNER_EXIT, cb_pw_game_tuner_app_paused},
    {EV_MODE_GEO, cb_pw_geo_app_resumed},
    {EV_MODE_GEO_EXIT, cb_pw_geo_app_paused},
};

}  // namespace

int init_property_worker(void) {
    publish();
    register_callbacks("property_worker", registrations);
    return 0;
}
