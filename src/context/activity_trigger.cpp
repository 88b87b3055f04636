#include "context/activity_trigger.h"

#include <errno.h>
#include <string.h>

#include <new>

#include "context/app_context.h"
#include "context/app_tables.h"
#include "core/event_manager.h"
#include "core/log.h"
#include "core/text.h"

namespace {

struct trigger_node {
    char package[package_name_size];
    trigger_action on;
    trigger_action off;
    trigger_node *next;
};

constinit struct {
    trigger_node *list = nullptr;
    const trigger_node *active = nullptr;  // whose on action ran last, without its off action since
} trigger;

const trigger_node *find_node(const char *window) {
    const trigger_node *node = trigger.list;
    while (node != nullptr && strncmp(node->package, window, package_name_size) != 0)
        node = node->next;
    return node;
}

void cb_at_window_changed() {
    const trigger_node *found = find_node(get_current_window_name());
    if (trigger.active != nullptr) {
        log_debug(debug_features, "Clear of callback for %s", trigger.active->package);
        trigger.active->off();
    }
    trigger.active = found;
    if (found != nullptr)
        found->on();
}

int read_next(at_entry *entry) {
    return get_at_configuration_for_common_app(entry) == 0 ? 0
                                                           : get_at_configuration_for_app(entry);
}

int build_list(at_entry *entry) {
    trigger_node **link = &trigger.list;
    while (read_next(entry) == 0) {
        trigger_node *node = new (std::nothrow) trigger_node{{}, entry->on, entry->off, nullptr};
        if (node == nullptr)
            return -ENOMEM;
        copy_text(node->package, entry->package);
        *link = node;
        link = &node->next;
        log_info("Activity Trigger : A[%c]", node->package[0]);
    }
    return 0;
}

void free_list() {
    while (trigger_node *node = trigger.list) {
        trigger.list = node->next;
        delete node;
    }
}

}  // namespace

int init_activity_trigger(void) {
    at_entry *entry = new (std::nothrow) at_entry;
    const int result = entry != nullptr ? build_list(entry) : -ENOMEM;
    delete entry;
    if (result != 0) {
        free_list();
        log_error("Memory allocation failed for activity trigger configuration.");
        return result;
    }
    if (trigger.list != nullptr)
        register_callback_for_event(EV_WINDOW_CHANGED, "profile_ctrl", cb_at_window_changed);
    return 0;
}
