#include "core/timer.h"

#include <errno.h>
#include <inttypes.h>
#include <pthread.h>

#include <new>

#include "core/log.h"
#include "platform/clock.h"
#include "platform/recording.h"
#include "platform/thread.h"

namespace {

constexpr int64_t armed_sleep_us = 100000;
constexpr int64_t idle_sleep_us = 500000;

struct timer_entry {
    int64_t start;  // ms of the monotonic clock, as `end`
    int64_t end;
    timer_callback callback;
};

// Guarded by `lock`, which the expiry actions run under.
constinit struct {
    pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
    timer_entry *slots[timer_slot_count] = {};
    int64_t last_check_ms = 0;
    bool initialised = false;
} timers;

// Once, whoever asks first; another time when there was no thread to be had. The slots start empty.
bool start_timer_thread() {
    pthread_mutex_lock(&timers.lock);
    if (!timers.initialised)
        timers.initialised = thread_start("timer", do_timer) == 0;
    const bool running = timers.initialised;
    pthread_mutex_unlock(&timers.lock);
    if (!running) {
        log_error("Error initializing internal timer thread\n");
        log_error("Failed to initialize internal timer");
    }
    return running;
}

int arm_empty_slot(uint32_t slot, int64_t now, int64_t end, timer_callback callback) {
    timers.slots[slot] = new (std::nothrow) timer_entry{now, end, callback};
    if (timers.slots[slot] == nullptr) {
        log_error("Failed to allocate memeory");
        return -ENOMEM;
    }
    return 0;
}

int extend_armed_slot(uint32_t slot, int64_t end, timer_callback callback) {
    timer_entry *entry = timers.slots[slot];
    if (entry->callback != callback) {
        log_error("Incorrect callbacks ingore timer request");
        return -EINVAL;
    }
    if (entry->end < end) {
        entry->end = end;
        log_debug(debug_features, "Timer %d Event End time updated", static_cast<int>(slot));
    } else {
        log_debug(debug_features, "Timer event ignored");
    }
    return 1;
}

void fire(uint32_t slot) {
    timer_entry *entry = timers.slots[slot];
    entry->callback();
    delete entry;
    timers.slots[slot] = nullptr;
}

// Runs what is due. Whether a timer is still armed, 1 or 0.
int scan_slots(bool *fired) {
    const int64_t now = get_current_monotonic_ms();
    pthread_mutex_lock(&timers.lock);
    const bool backwards = now < timers.last_check_ms;
    if (backwards)
        log_info("Overflow release all");

    int armed = 0;
    *fired = false;
    for (uint32_t slot = 0; slot < timer_slot_count; ++slot) {
        const timer_entry *entry = timers.slots[slot];
        if (entry == nullptr)
            continue;
        if (!backwards && entry->end > now) {
            armed = 1;
            continue;
        }
        if (!backwards)
            log_debug(debug_features,
                      "Timer for %d is exprired %" PRId64 "~%" PRId64 " for %" PRId64,
                      static_cast<int>(slot), entry->start, entry->end, entry->end - entry->start);
        fire(slot);
        *fired = true;
    }
    timers.last_check_ms = now;
    pthread_mutex_unlock(&timers.lock);
    return armed;
}

}  // namespace

int64_t get_current_monotonic_ms(void) {
    return clock_monotonic_ns() / 1000000;
}

int add_timer_event(uint32_t slot, int64_t duration_ms, timer_callback callback) {
    const int64_t now = get_current_monotonic_ms();
    log_debug(debug_features, "Timer %d Requested for %" PRId64 " ms at %" PRId64 " ms",
              static_cast<int>(slot), duration_ms, now);

    if (!start_timer_thread())
        return -EINVAL;
    if (slot >= timer_slot_count) {
        log_error("Unknown timer request %d", static_cast<int>(slot));
        return -EINVAL;
    }
    int64_t end;
    if (__builtin_add_overflow(now, duration_ms, &end))
        end = duration_ms > 0 ? INT64_MAX : INT64_MIN;

    pthread_mutex_lock(&timers.lock);
    const int result = timers.slots[slot] == nullptr ? arm_empty_slot(slot, now, end, callback)
                                                     : extend_armed_slot(slot, end, callback);
    pthread_mutex_unlock(&timers.lock);
    return result;
}

int64_t timer_next_end_ms(void) {
    int64_t next = INT64_MAX;
    pthread_mutex_lock(&timers.lock);
    for (const timer_entry *entry : timers.slots)
        if (entry != nullptr && entry->end < next)
            next = entry->end;
    pthread_mutex_unlock(&timers.lock);
    return next;
}

int check_expired_work(void) {
    bool fired;
    return scan_slots(&fired);
}

int64_t timer_round_us(bool *fired) {
    return scan_slots(fired) != 0 ? armed_sleep_us : idle_sleep_us;
}

void *do_timer(void *) {
    for (;;) {
        bool fired = false;
        recording_begin(recorded_timers);
        const int64_t pause_us = timer_round_us(&fired);
        recording_end(fired);
        clock_sleep_us(pause_us);
    }
}
