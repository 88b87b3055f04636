// The profile controller: decides which performance profile is held. Three slots ask: a property,
// the category of the app in front, and the window in front; a later slot wins over an earlier one.
//
// Start-up builds the lists. Callbacks run on the client listener and on the kernel event monitor;
// this module's lock makes one step of each decision with the library calls that follow from it,
// and nothing else is taken under it.
#pragma once

#include <cstdint>

enum profile_slot : uint32_t {
    profile_slot_property = 0,
    profile_slot_category = 1,
    profile_slot_app = 2,
};
constexpr uint32_t profile_slots = 3;

// Reads the configuration and registers the callbacks that it needs. 0, or -ENOMEM with a log line.
int init_profile_controller(void);

// Asks for `profile` in a slot, -1 for none, and holds the one that wins; only 1 or more is held.
void check_current_profile(uint32_t slot, int32_t profile);
