// Which performance profiles are wanted, and for what. This configuration wants none.
// Read once at start-up.
#pragma once

#include <cstdint>

enum profile_category : int32_t {
    profile_game = 0,
    profile_navigation = 1,
    profile_social = 2,
    profile_browser = 3,
};
constexpr int32_t profile_categories = 4;

struct profile_app_entry {
    const char *app_name;  // of the window in front
    int32_t profile;
};

struct profile_prop_entry {
    const char *prop_name;
    const char *prop_value;
    int32_t profile;
};

// The category's profile number, or a negative value for none.
int32_t get_profile_configuration_for_category(int32_t category);

// The next entry: 0 or more, or a negative value when there are no more.
int32_t get_profile_configuration_for_app(profile_app_entry *entry);
int32_t get_profile_configuration_for_prop(profile_prop_entry *entry);
