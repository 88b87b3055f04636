#include "resource/thermal_engine.h"

#include <errno.h>

#include <atomic>

#include "core/event_manager.h"
#include "core/log.h"
#include "platform/clock.h"
#include "platform/recording.h"
#include "platform/thread.h"
#include "resource/hw_library.h"

namespace {

constexpr int poll_max = 300;
constexpr int64_t poll_pause_us = 1000000;
constexpr int32_t stable_polls = 10;

constinit struct {
    int (*enable_thermal_config)(const char *name, int on) = nullptr;
    int (*verify_thermal_config_desc)(void) = nullptr;  // must be there; nobody calls it
    int (*get_num_of_thermal_config_desc)(void) = nullptr;
    std::atomic<bool> thermal_if_initialized = false;
    std::atomic<bool> thermal_config_loaded = false;
} engine;

int bind_library() {
    if (!hw_library_is_open() && get_handle() != 0) {
        log_error("No handle");
        return -EINVAL;
    }
    if (hw_library_bind("enable_thermal_config", &engine.enable_thermal_config) != 0 ||
        hw_library_bind("verify_thermal_config_desc", &engine.verify_thermal_config_desc) != 0 ||
        hw_library_bind("get_num_of_thermal_config_desc", &engine.get_num_of_thermal_config_desc) !=
            0)
        return -EINVAL;
    return 0;
}

}  // namespace

int32_t enable_thermal_config(const char *name, int32_t on) {
    log_static(debug_features, "Thermal Config [%s] requested [%d]", name, on);
    if (!engine.thermal_if_initialized.load(std::memory_order_acquire)) {
        log_error("Thermal Interface is not initialized. Init it first.");
        return -EINVAL;
    }
    if (!engine.thermal_config_loaded.load(std::memory_order_acquire)) {
        log_info("Thermal Configuration is not loaded yet.");
        return -EBUSY;
    }
    return engine.enable_thermal_config(name, on);
}

thermal_poll begin_thermal_polls(void) {
    log_info("Thermal Config Check Thread Start");
    return {};
}

bool poll_thermal_engine(thermal_poll *poll) {
    const int32_t count = engine.get_num_of_thermal_config_desc();
    if (count < 1) {
        poll->stable = 0;
    } else if (count != poll->last_count) {
        poll->last_count = count;
        poll->stable = 0;
    } else if (poll->stable < stable_polls) {
        ++poll->stable;
    } else {
        engine.thermal_config_loaded.store(true, std::memory_order_release);
        notify_event(EV_THERMAL_ENGINE_ACTIVATED);
        return true;
    }
    return false;
}

void *do_check_thermal_engine_activation(void *) {
    thermal_poll poll = {};
    bool found = false;
    for (int i = 0; i < poll_max && !found; ++i) {
        recording_begin(recorded_thermal);
        if (i == 0)
            poll = begin_thermal_polls();
        found = poll_thermal_engine(&poll);
        recording_end();
        if (!found)
            clock_sleep_us(poll_pause_us);
    }
    return nullptr;
}

int init_thermal_engine_support(void) {
    if (engine.thermal_if_initialized.load(std::memory_order_acquire))
        return 0;
    if (bind_library() != 0) {
        log_info("This device doesn't support thermal engine");
        return -EINVAL;
    }
    if (thread_start("thermal_check", do_check_thermal_engine_activation) != 0) {
        log_error("Error to initialzed sync notify thread.");
        return -EFAULT;
    }
    engine.thermal_if_initialized.store(true, std::memory_order_release);
    return 0;
}
