// The frame-rate manager: resolves what the frame-rate requestors ask for into the one rate that
// the display gets.
//
// Start-up builds the list. Requests come from the client listener, the timer thread and event
// callbacks, grants from the policy thread. The list is walked without a lock; comparing with the
// applied rate and applying the new one is one step under the frame-rate mutex, and the last to
// take it decides. Nothing else is locked under that mutex.
#pragma once

#include <cstdint>

// Frames per second that may be asked for; the display's own rate is the highest.
constexpr int32_t fps_min = 20;
constexpr int32_t fps_max = 60;

// Binds frame-rate control and builds the requestor list. 0 or -EINVAL.
int start_fps_manager(void);

// What the requestor asks for, in frames per second; outside 20 to 60: nothing. 0, or -EINVAL with
// a log line for an unknown requestor.
int requestor_request_fps(int32_t id, int32_t fps);

// The grant operation of the acceptor "fps". 0, or -EINVAL for an unknown requestor.
int fps_manager_set_grant(int32_t id, int32_t grant);

// Resolves the list: the lowest granted rate within 20 to 60, or 60; applies it when it is new.
void update_fps_resource_state(void);

// 1 if the manager has started, else 0.
int is_fps_manager_available(void);
