#include "features/profile_controller.h"

#include <assert.h>
#include <cutils/properties.h>
#include <errno.h>
#include <pthread.h>
#include <string.h>

#include <new>

#include "context/app_context.h"
#include "core/event_manager.h"
#include "core/log.h"
#include "core/text.h"
#include "features/profile_configuration.h"
#include "features/profile_manager.h"

namespace {

constexpr int32_t no_profile = -1;
constexpr int32_t first_profile = 1;
constexpr int32_t controller_hint = 0;

struct app_node {
    char app_name[512];
    int32_t profile;
    app_node *next;
};

struct prop_node {
    char prop_name[32];
    char prop_value[92];
    int32_t profile;
    prop_node *next;
};

constinit struct {
    pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
    int32_t profile_request[profile_slots] = {no_profile, no_profile, no_profile};  // under `lock`
    int32_t current_profile = no_profile;                                           // under `lock`
    int32_t category_profiles[profile_categories] = {no_profile, no_profile, no_profile,
                                                     no_profile};
    app_node *apps = nullptr;
    prop_node *props = nullptr;
} controller;

int32_t wanted_profile() {
    for (uint32_t slot = profile_slots; slot-- > 0;)
        if (controller.profile_request[slot] >= 0)
            return controller.profile_request[slot];
    return no_profile;
}

void hold_profile(int32_t wanted) {
    if (wanted == controller.current_profile)
        return;
    if (controller.current_profile >= first_profile) {
        log_debug(debug_features, "Profile [%d] Clear", controller.current_profile);
        undo_hint_action_profile(controller_hint);
        controller.current_profile = no_profile;
    }
    if (wanted >= first_profile) {
        log_debug(debug_features, "Profile [%d] Set", wanted);
        perform_hint_action_profile(controller_hint, wanted);
        controller.current_profile = wanted;
    }
}

void log_requests() {
    log_debug(debug_features, "===== Current Profile Request =====");
    for (uint32_t slot = 0; slot < profile_slots; ++slot)
        log_debug(debug_features, "==> TYPE[%d] : %d", static_cast<int>(slot),
                  controller.profile_request[slot]);
}

void change_category(int32_t category) {
    check_current_profile(profile_slot_category, controller.category_profiles[category]);
}

void cb_profc_no_specific_app() {
    check_current_profile(profile_slot_category, no_profile);
}

void cb_profc_game_default_app_resumed() {
    change_category(profile_game);
}

void cb_profc_game_tuner_app_resumed() {
    change_category(profile_game);
}

void cb_profc_browser_app_resumed() {
    change_category(profile_browser);
}

void cb_profc_sns_app_resumed() {
    change_category(profile_social);
}

void cb_profc_geo_app_resumed() {
    change_category(profile_navigation);
}

void cb_profc_window_changed() {
    const char *window = get_current_window_name();
    const app_node *node = controller.apps;
    while (node != nullptr && strncmp(node->app_name, window, sizeof(node->app_name)) != 0)
        node = node->next;
    if (node != nullptr && node->profile >= 0) {
        log_debug(debug_features, "App Name %s, Prof %d", node->app_name, node->profile);
        check_current_profile(profile_slot_app, node->profile);
    } else {
        log_debug(debug_features, "No App Profile");
        check_current_profile(profile_slot_app, no_profile);
    }
}

bool has_wanted_value(const prop_node *node) {
    char value[PROPERTY_VALUE_MAX];
    return property_get(node->prop_name, value, "") > 0 &&
           strncmp(value, node->prop_value, sizeof(node->prop_value)) == 0;
}

void cb_profc_activity_changed() {
    const prop_node *node = controller.props;
    while (node != nullptr && !has_wanted_value(node))
        node = node->next;
    if (node != nullptr)
        log_debug(debug_features, "Prop Name %s, Prof %d", node->prop_name, node->profile);
    check_current_profile(profile_slot_property, node != nullptr ? node->profile : no_profile);
}

constexpr event_registration category_registrations[] = {
    {EV_MODE_NONE, cb_profc_no_specific_app},
    {EV_MODE_GAME_DEFAULT, cb_profc_game_default_app_resumed},
    {EV_MODE_GAME_TUNER, cb_profc_game_tuner_app_resumed},
    {EV_MODE_BROWSER, cb_profc_browser_app_resumed},
    {EV_MODE_SNS, cb_profc_sns_app_resumed},
    {EV_MODE_GEO, cb_profc_geo_app_resumed},
};

// Whether any category has a profile.
bool read_categories() {
    bool any = false;
    for (int32_t category = 0; category < profile_categories; ++category) {
        const int32_t profile = get_profile_configuration_for_category(category);
        controller.category_profiles[category] = profile >= 0 ? profile : no_profile;
        if (profile < 0)
            continue;
        log_info("Profile Control : C[%d](%d)", category, profile);
        any = true;
    }
    return any;
}

int read_apps() {
    profile_app_entry entry;
    app_node **link = &controller.apps;
    while (get_profile_configuration_for_app(&entry) >= 0) {
        *link = new (std::nothrow) app_node{{}, entry.profile, nullptr};
        if (*link == nullptr) {
            log_error("Memory allocation failed for pc app configuration.");
            return -ENOMEM;
        }
        copy_text((*link)->app_name, entry.app_name);
        log_info("Profile Control : A[%c](%d)", entry.app_name[0], entry.profile);
        link = &(*link)->next;
    }
    return 0;
}

int read_props() {
    profile_prop_entry entry;
    prop_node **link = &controller.props;
    while (get_profile_configuration_for_prop(&entry) >= 0) {
        *link = new (std::nothrow) prop_node{{}, {}, entry.profile, nullptr};
        if (*link == nullptr) {
            log_error("Memory allocation failed for pc property configuration.");
            return -ENOMEM;
        }
        copy_text((*link)->prop_name, entry.prop_name);
        copy_text((*link)->prop_value, entry.prop_value);
        log_info("Profile Control : P[%c](%d)", entry.prop_name[0], entry.profile);
        link = &(*link)->next;
    }
    return 0;
}

}  // namespace

void check_current_profile(uint32_t slot, int32_t profile) {
    assert(slot < profile_slots);
    pthread_mutex_lock(&controller.lock);
    if (controller.profile_request[slot] != profile) {
        controller.profile_request[slot] = profile;
        if (profile == no_profile)
            log_debug(debug_features, "Profile Type:%d cleared", static_cast<int>(slot));
        log_requests();
        hold_profile(wanted_profile());
    }
    pthread_mutex_unlock(&controller.lock);
}

int init_profile_controller(void) {
    for (int32_t &request : controller.profile_request)
        request = no_profile;
    const bool any_category = read_categories();
    if (read_apps() != 0 || read_props() != 0)
        return -ENOMEM;
    if (any_category)
        register_callbacks("profile_ctrl", category_registrations);
    if (controller.apps != nullptr)
        register_callback_for_event(EV_WINDOW_CHANGED, "profile_ctrl", cb_profc_window_changed);
    if (controller.props != nullptr)
        register_callback_for_event(EV_APP_CHANGE, "profile_ctrl", cb_profc_activity_changed);
    return 0;
}
