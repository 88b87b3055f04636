// Holds numbered performance profiles through the vendor's extension library.
//
// The library is opened at load time and closed at exit. Holding and releasing belong to the
// profile controller, under its lock.
#pragma once

#include <cstdint>

// Opens the extension library that its property names. Load time, before main.
void init_profile_manager_ext(void);

// Closes it. Process exit.
void cleanup_profile_manager_ext(void);

// Acquires a profile and remembers its lock under the hint id; what fails is logged. Nothing
// happens without a library.
void perform_hint_action_profile(int32_t hint_id, int32_t profile);

// Releases and forgets the first lock under the hint id; what fails is logged.
void undo_hint_action_profile(int32_t hint_id);
