#include "features/profile_configuration.h"

int32_t get_profile_configuration_for_category(int32_t /*category*/) {
    return -1;
}

int32_t get_profile_configuration_for_app(profile_app_entry * /*entry*/) {
    return -1;
}

int32_t get_profile_configuration_for_prop(profile_prop_entry * /*entry*/) {
    return -1;
}
