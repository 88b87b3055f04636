// One-shot timers in seven slots, one slot a purpose, polled by one thread that starts with the
// first request; and the daemon's millisecond clock.
//
// The timer lock guards the slots. Expiry actions run on the timer thread with it held, so none of
// them may arm a timer, and a lock that an action takes is always taken after the timer lock.
#pragma once

#include <cstdint>

using timer_callback = void (*)(void);

enum timer_slot : uint32_t {
    timer_game_tuner = 0,
    timer_mitigation = 1,
    timer_automode = 2,
    timer_lpm = 3,
    timer_elpm = 4,
    timer_floating_window = 5,  // slot 6 has no purpose yet
};
constexpr uint32_t timer_slot_count = 7;

// Milliseconds of the monotonic clock. Any thread may call.
int64_t get_current_monotonic_ms(void);

// Arms `slot` to run `callback` once, `duration_ms` from now; 0 or less means at the next scan. A
// slot that is armed with the same callback has its end moved out when the new one is later.
// 0: armed; 1: was armed with this callback; -EINVAL: no such slot, armed with another callback, or
// no timer thread; -ENOMEM. Any thread may call, but no expiry action.
int add_timer_event(uint32_t slot, int64_t duration_ms, timer_callback callback);

// When the armed slot that ends first does so, in ms of the daemon's clock; INT64_MAX when none is
// armed. For a clock that does not run by itself; any thread may call.
int64_t timer_next_end_ms(void);

// One scan of the slots by the timer thread: runs what is due. 1 if a timer is still armed, else 0.
int check_expired_work(void);

// One round of the timer thread: a scan, whether it ran anything, and how long to sleep until the
// next, in microseconds.
int64_t timer_round_us(bool *fired);

// The timer thread.
void *do_timer(void *);
