// The four names of what is on the screen, as the power HAL last reported them. Each is a text of
// at most 255 characters, empty at start and never cleared.
//
// The power-HAL handler alone writes them, on the client listener thread, and what it raises runs
// there too: on that thread the getters may be used. Any other thread takes a copy, under this
// module's lock, under which nothing else is taken.
#pragma once

#include <cstddef>

constexpr size_t app_name_size = 256;

// Client listener thread only; the text changes with the next message.
const char *get_current_window_name(void);
const char *get_current_activity_name(void);
const char *get_full_activity_name(void);
const char *get_home_activity_name(void);

// Any thread: the current window name, cut to `size`.
void copy_current_window_name(char *name, size_t size);

// The power-HAL handler's: a text is cut at 255 characters.
void set_current_window_name(const char *name);
void set_current_activity_name(const char *name);
void set_full_activity_name(const char *name);
void set_home_activity_name(const char *name);

// Cuts the full activity name behind its first part between "/" and returns that part, or null when
// it has none. The power-HAL handler's.
const char *cut_full_activity_name(void);
