#include "resource/policy.h"

#include <assert.h>
#include <errno.h>
#include <pthread.h>

#include <atomic>

#include "core/event_manager.h"
#include "core/log.h"
#include "platform/thread.h"
#include "resource/acceptor.h"
#include "resource/requestor.h"

namespace {

// Who counts in which kind of state. No acceptor is named "refresh_rate".
enum grant_column { column_idle, column_game_default, column_game_tuner, grant_columns };

struct grant_row {
    const char *acceptor;
    requestor_id requestor;
    int32_t grant[grant_columns];
};

constexpr grant_row grant_matrix[] = {
    {"fps", requestor_dgpc, {1, 1, 0}},
    {"fps", requestor_game_tuner, {0, 0, 1}},
    {"fps", requestor_reserved_2, {0, 1, 1}},
    {"fps", requestor_reserved_5, {1, 1, 1}},
    {"fps", requestor_automode, {0, 1, 1}},
    {"fps", requestor_lpm, {1, 1, 1}},
    {"off_image_enhancer", requestor_image_enhance, {1, 1, 1}},
    {"refresh_rate", requestor_refresh_rate, {1, 1, 1}},
};
constexpr int32_t grant_rows = sizeof(grant_matrix) / sizeof(grant_matrix[0]);

// A column as the acceptor chain takes it: applied whole and in this order.
struct grant_table {
    grant_change rows[grant_rows];
};

constexpr grant_table make_grants(grant_column column) {
    grant_table table = {};
    for (int32_t row = 0; row < grant_rows; ++row) {
        const grant_row &from = grant_matrix[row];
        grant_change &change = table.rows[row];
        for (int i = 0; from.acceptor[i] != '\0'; ++i)
            change.acceptor[i] = from.acceptor[i];
        change.requestor = from.requestor;
        change.grant = from.grant[column];
    }
    return table;
}

constexpr grant_table idle_grants = make_grants(column_idle);
constexpr grant_table game_default_grants = make_grants(column_game_default);
constexpr grant_table game_tuner_grants = make_grants(column_game_tuner);

// What a state is: its grants and the event that says they hold.
void enter_state(const grant_table &grants, event_id entered) {
    request_dvx_grant_change(grants.rows, grant_rows);
    notify_event(entered);
}

void state_handler_idle() {
    enter_state(idle_grants, EV_STATE_IDLE);
}

void state_handler_game_default() {
    enter_state(game_default_grants, EV_STATE_GAME_DEFAULT);
}

void state_handler_game_tuner() {
    enter_state(game_tuner_grants, EV_STATE_GAME_TUNER);
}

void state_handler_graphic_tune() {
    enter_state(idle_grants, EV_STATE_GRAPHIC_TUNE);
}

void state_handler_fps_tune() {
    enter_state(idle_grants, EV_STATE_FPS_TUNE);
}

struct state_entry {
    char name[24];
    void (*handler)();
};

constexpr state_entry f[policy_state_count] = {
    {"idle", state_handler_idle},
    {"game_default", state_handler_game_default},
    {"game_tuner", state_handler_game_tuner},
    {"graphic_tune", state_handler_graphic_tune},
    {"fps_tune", state_handler_fps_tune},
};

constinit struct {
    // Whose handler was started last, or which has been posted since: what the thread is on its way
    // to. Written under both locks.
    std::atomic<int32_t> current_state = state_idle;
    pthread_mutex_t handover_lock;
    pthread_cond_t thread_ready;  // with handover_lock
    pthread_mutex_t request_lock;
    pthread_cond_t request_posted;         // with request_lock
    int32_t requested_state = state_idle;  // under request_lock
    bool ready = false;  // the thread waits for a request; written under both locks
} policy = {};

void cb_no_specific_app() {
    change_state(state_idle);
}

void cb_game_default_app_resumed() {
    change_state(state_game_default);
}

void cb_game_tuner_app_resumed() {
    change_state(state_game_tuner);
}

void cb_browser_app_resumed() {
    change_state(state_fps_tune);
}

void cb_sns_app_resumed() {
    change_state(state_fps_tune);
}

void cb_geo_app_resumed() {
    change_state(state_graphic_tune);
}

constexpr event_registration registrations[] = {
    {EV_MODE_NONE, cb_no_specific_app},
    {EV_MODE_GAME_DEFAULT, cb_game_default_app_resumed},
    {EV_MODE_GAME_TUNER, cb_game_tuner_app_resumed},
    {EV_MODE_BROWSER, cb_browser_app_resumed},
    {EV_MODE_SNS, cb_sns_app_resumed},
    {EV_MODE_GEO, cb_geo_app_resumed},
};

}  // namespace

int change_state(int32_t state) {
    if (state == policy.current_state.load(std::memory_order_acquire))
        return 0;
    pthread_mutex_lock(&policy.handover_lock);
    while (!policy.ready)
        thread_wait(&policy.thread_ready, &policy.handover_lock);

    // Clearing `ready` in the step that posts makes other callers queue for the next turn.
    pthread_mutex_lock(&policy.request_lock);
    policy.requested_state = state;
    policy.current_state.store(state, std::memory_order_release);
    policy.ready = false;
    thread_wake(&policy.request_posted);
    pthread_mutex_unlock(&policy.request_lock);
    pthread_mutex_unlock(&policy.handover_lock);
    return 1;
}

int32_t policy_run_state(int32_t state) {
    assert(state >= 0 && state < policy_state_count);
    log_debug(debug_events, "PM : %s", f[state].name);
    f[state].handler();

    // The request lock stays held until the wait, so nothing is posted before the thread waits.
    pthread_mutex_lock(&policy.handover_lock);
    pthread_mutex_lock(&policy.request_lock);
    policy.ready = true;
    thread_wake(&policy.thread_ready);
    pthread_mutex_unlock(&policy.handover_lock);
    while (policy.ready)
        thread_wait(&policy.request_posted, &policy.request_lock);
    const int32_t next = policy.requested_state;
    pthread_mutex_unlock(&policy.request_lock);
    return next;
}

void *process_state(void *) {
    int32_t state = state_idle;
    for (;;)
        state = policy_run_state(state);
}

int start_policy_manager(void) {
    pthread_mutex_init(&policy.handover_lock, nullptr);
    pthread_cond_init(&policy.thread_ready, nullptr);
    pthread_mutex_init(&policy.request_lock, nullptr);
    pthread_cond_init(&policy.request_posted, nullptr);
    register_callbacks("policy_manager", registrations);
    if (thread_start("policy", process_state) != 0) {
        log_error("Error initializing Policy Manager Thread\n");
        return -EINVAL;
    }
    return 0;
}
