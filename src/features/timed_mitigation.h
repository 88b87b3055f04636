// Timed thermal mitigation: asks the thermal client library for a setting and releases it when the
// time is over. Refused in extreme low power mode.
//
// The client listener asks; the timer thread (slot 1) releases. The configuration is written only
// at start-up, and whether a mitigation runs is the timer service's to know.
#pragma once

#include <cstdint>

// Sets the two values for devices with two clusters and begins to serve. Start-up.
void activate_tmr_2cluster(uint32_t first, uint32_t second);

// 0: requested for `duration_ms`; 1: one ran already, its release moved out where that is later;
// -EINVAL: refused; else the timer service's error. All but 0 and 1 with a log line.
int request_timed_tmr(int64_t duration_ms);

// Timer action: the release.
void cb_tmr_release(void);

// Event callbacks: an app change asks for 2000 ms, a soft key for 800 ms.
void cb_app_change(void);
void cb_soft_key(void);
