#include "resource/fps_manager.h"

#include <errno.h>
#include <pthread.h>

#include "core/log.h"
#include "resource/hw_library.h"
#include "resource/requestor.h"

namespace {

constexpr int32_t no_request = -1;
constexpr int32_t no_winner = -1;

constexpr int32_t fps_requestors[] = {requestor_dgpc,       requestor_game_tuner,
                                      requestor_reserved_2, requestor_reserved_5,
                                      requestor_automode,   requestor_lpm};

constinit struct {
    requestor *list = nullptr;
    int (*init_hw_fps_control)(void) = nullptr;
    int (*request_fps)(int fps) = nullptr;
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    int32_t applied = fps_max;  // frames per second; under `mutex`
} manager;

}  // namespace

void update_fps_resource_state(void) {
    if (manager.list == nullptr)
        return;
    int32_t best = fps_max;
    int32_t winner = no_winner;
    for (const requestor *voter = manager.list; voter != nullptr; voter = voter->next) {
        const int32_t value = voter->value.load(std::memory_order_relaxed);
        if (voter->grant.load(std::memory_order_relaxed) != 0 && value >= fps_min && value < best) {
            best = value;
            winner = voter->id;
        }
    }

    pthread_mutex_lock(&manager.mutex);
    if (best != manager.applied) {
        manager.applied = best;
        log_info("CF%d b%d", best, winner);
        if (manager.request_fps != nullptr)
            manager.request_fps(best);
    }
    pthread_mutex_unlock(&manager.mutex);
}

int requestor_request_fps(int32_t id, int32_t fps) {
    if (requestor_request_value(manager.list, id, fps) != 0)
        return -EINVAL;
    update_fps_resource_state();
    return 0;
}

int fps_manager_set_grant(int32_t id, int32_t grant) {
    log_info("FM - Acceptor %d set grant %d", id, grant);
    if (resource_manager_set_grant(manager.list, id, grant) != 0)
        return -EINVAL;
    update_fps_resource_state();
    return 0;
}

int is_fps_manager_available(void) {
    return manager.list != nullptr ? 1 : 0;
}

int start_fps_manager(void) {
    if (get_handle() != 0 ||
        hw_library_bind("init_hw_fps_control", &manager.init_hw_fps_control) != 0 ||
        hw_library_bind("request_fps", &manager.request_fps) != 0)
        return -EINVAL;
    if (manager.init_hw_fps_control() < 0)
        return -EINVAL;
    for (const int32_t id : fps_requestors)
        manager.list = add_voter(manager.list, id, no_request);
    print_resource_list(manager.list, "fps_manager");
    return 0;
}
