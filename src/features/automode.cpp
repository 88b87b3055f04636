#include "features/automode.h"

#include <errno.h>
#include <pthread.h>

#include <atomic>

#include "core/event_manager.h"
#include "core/log.h"
#include "core/timer.h"
#include "ipc/outbound/powercontrol_client.h"
#include "resource/fps_manager.h"
#include "resource/hw_library.h"
#include "resource/requestor.h"
#include "resource/thermal_engine.h"

namespace {

constexpr uint32_t automode_set = 0;
constexpr int64_t lift_ms = 8000;  // after the last touch
constexpr int32_t brightness_target = 160;
constexpr uint32_t lifted_by_touch = 1u << automode_row_fps | 1u << automode_row_brightness;

constinit struct {
    pthread_mutex_t automode_lock = PTHREAD_MUTEX_INITIALIZER;
    std::atomic<uint32_t> automode_supported = 0;            // a bit a row; set at start-up
    uint32_t automode_state = 0;                             // rows that are on; under the lock
    automode_config automode_rows[automode_row_count] = {};  // usable ones are enabled
} automode;

constinit struct {
    bool ready = false;
    int (*init_automode_node)(void) = nullptr;
    int (*set_automode_freq)(unsigned value) = nullptr;
} kernel_node;

int apply_fps(const automode_config &, int32_t value) {
    return requestor_request_fps(requestor_automode, value);
}

int apply_brightness(const automode_config &, int32_t value) {
    return notify_to_framework_max_brightness(brightness_target, value);
}

int apply_thermal(const automode_config &row, int32_t value) {
    return enable_thermal_config(row.name, value);
}

int apply_kernel_node(const automode_config &, int32_t value) {
    return set_kernel_automode_freq(static_cast<uint32_t>(value));
}

bool has_fps_manager() {
    return is_fps_manager_available() != 0;
}

bool has_thermal_engine() {
    return init_thermal_engine_support() == 0;
}

bool has_kernel_node() {
    return init_automode_kernel_node() == 0;
}

// A type that a row may have: what it needs, what is said without it, and how a value is applied.
struct row_type {
    uint32_t row;
    uint32_t type;
    bool (*is_available)();  // null: always
    const char *missing;
    int (*apply)(const automode_config &row, int32_t value);
};

constexpr row_type row_types[] = {
    {automode_row_fps, 0, has_fps_manager,
     "This device doesn't support fps internally.                               "
     "Check Automode configurations",
     apply_fps},
    {automode_row_brightness, 0, nullptr, nullptr, apply_brightness},
    {automode_row_brightness, 1, has_thermal_engine,
     "This device doesn't support thermal engine.                               "
     "Check Automode configurations",
     apply_thermal},
    {automode_row_freq, 1, has_thermal_engine,
     "This device doesn't support thermal engine.                                "
     "Check Automode configurations",
     apply_thermal},
    {automode_row_freq, 2, has_kernel_node,
     "This device doesn't support kernel node for automode.                                "
     "Check Automode configurations",
     apply_kernel_node},
};

// What is said of a type that the row cannot have.
constexpr const char *unknown_type[automode_row_count] = {
    "FPS doesn't support type : %d",
    "Brightness doesn't support type : %d",
    "Frequency doesn't support type : %d",
};

const row_type *find_type(uint32_t row, uint32_t type) {
    for (const row_type &candidate : row_types)
        if (candidate.row == row && candidate.type == type)
            return &candidate;
    return nullptr;
}

bool is_usable(uint32_t row, const automode_config &config) {
    const row_type *type = find_type(row, config.type);
    if (type == nullptr) {
        log_error(unknown_type[row], static_cast<int>(config.type));
        return false;
    }
    if (type->is_available != nullptr && !type->is_available()) {
        log_error("%s", type->missing);
        return false;
    }
    return true;
}

// What a command means now: the rows that are to be on and those that change. 0 or a negative errno
// value.
int plan_command(uint32_t command, uint32_t *target, uint32_t *change) {
    const uint32_t supported = automode.automode_supported.load(std::memory_order_acquire);
    const uint32_t state = automode.automode_state;
    switch (command) {
        case automode_all_off:
            *target = 0;
            *change = supported;
            return 0;
        case automode_all_on:
            *target = supported;
            *change = supported;
            return 0;
        case automode_touch:
            *target = supported & ~lifted_by_touch;
            *change = *target ^ state;
            return state != 0 ? 0 : -ECANCELED;
        case automode_resume:
            *target = supported;
            *change = supported ^ state;
            return state != 0 ? 0 : -ECANCELED;
        case automode_game_exit:
            *target = 0;
            *change = supported;
            return state == 0 ? 0 : -ECANCELED;
        default:
            log_error("Abnormal cmd");
            return -EINVAL;
    }
}

void switch_row(uint32_t row, bool on) {
    const automode_config &config = automode.automode_rows[row];
    log_static(debug_features, "%d-%d : on %d", static_cast<int>(automode_set),
               static_cast<int>(row), on ? 1 : 0);
    if (on)
        automode.automode_state |= 1u << row;
    else
        automode.automode_state &= ~(1u << row);
    find_type(row, config.type)->apply(config, on ? config.on_value : config.off_value);
}

void switch_rows(uint32_t target, uint32_t change) {
    log_static(debug_features, "Start automode set");
    for (uint32_t row = 0; row < automode_row_count; ++row) {
        if (automode.automode_rows[row].enabled == 0)
            log_error("%d-%d is not enable", static_cast<int>(automode_set), static_cast<int>(row));
        else if ((change & 1u << row) != 0)
            switch_row(row, (target & 1u << row) != 0);
    }
    log_static(debug_features, "End automode set");
}

void cb_autogame_interaction() {
    if (set_switched_automode(automode_touch) < 0)
        return;
    if (add_timer_event(timer_automode, lift_ms, resume_autogame_brightness_control) < 0) {
        log_error("Failed to get Timer");
        set_switched_automode(automode_resume);
    }
}

void cb_autogame_game_exit() {
    set_switched_automode(automode_game_exit);
}

constexpr event_registration registrations[] = {
    {EV_INTERACTION, cb_autogame_interaction},
    {EV_MODE_GAME_DEFAULT_EXIT, cb_autogame_game_exit},
};

}  // namespace

int set_switched_automode(uint32_t command) {
    if (automode.automode_supported.load(std::memory_order_acquire) == 0)
        return -EINVAL;
    pthread_mutex_lock(&automode.automode_lock);
    uint32_t target = 0;
    uint32_t change = 0;
    const int result = plan_command(command, &target, &change);
    if (result == 0 && change != 0)
        switch_rows(target, change);
    pthread_mutex_unlock(&automode.automode_lock);
    return result;
}

void resume_autogame_brightness_control(void) {
    set_switched_automode(automode_resume);
}

int init_automode_kernel_node(void) {
    if (kernel_node.ready)
        return 0;
    if (!hw_library_is_open() && get_handle() != 0) {
        log_error("No handle");
        log_info("This device doesn't support thermal engine");
        return -EINVAL;
    }
    if (hw_library_bind("init_automode_node", &kernel_node.init_automode_node) != 0 ||
        hw_library_bind("set_automode_freq", &kernel_node.set_automode_freq) != 0) {
        log_info("This device doesn't support thermal engine");
        return -EINVAL;
    }
    const int result = kernel_node.init_automode_node();
    kernel_node.ready = result == 0;
    return result;
}

int set_kernel_automode_freq(uint32_t value) {
    log_error("set_kernel_automode_freq");
    return kernel_node.ready ? kernel_node.set_automode_freq(value) : -EINVAL;
}

int init_automode(void) {
    uint32_t supported = 0;
    for (uint32_t row = 0; row < automode_row_count; ++row) {
        const automode_config *config = get_automode_configuration(automode_set, row);
        automode.automode_rows[row].enabled = 0;
        if (config == nullptr || config->enabled == 0 || !is_usable(row, *config))
            continue;
        automode.automode_rows[row] = *config;
        supported |= 1u << row;
    }
    automode.automode_supported.store(supported, std::memory_order_release);
    if (supported != 0)
        log_info("AM%d Enabled", static_cast<int>(automode_set));
    register_callbacks("autogame", registrations);
    return 0;
}
