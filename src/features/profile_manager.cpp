#include "features/profile_manager.h"

#include <cutils/properties.h>
#include <dlfcn.h>

#include <new>

#include "core/log.h"
#include "platform/device_root.h"

namespace {

constexpr int acquire_handle = 0;
constexpr int release_profile = -1;
constexpr int lock_failed = -1;

struct hint {
    int64_t hint_id;
    int64_t lock_handle;
};

struct hint_node {
    hint *held;  // owned
    hint_node *next;
};

constinit struct {
    void *handle = nullptr;
    int (*perf_lock_use_profile)(int handle, int profile) = nullptr;
    hint_node *hints = nullptr;
} library;

bool is_available() {
    return library.handle != nullptr && library.perf_lock_use_profile != nullptr;
}

int release_lock(int64_t lock_handle) {
    return library.perf_lock_use_profile(static_cast<int>(lock_handle), release_profile);
}

hint_node *create_hint(int32_t hint_id, int lock_handle) {
    hint *held = new (std::nothrow) hint{hint_id, lock_handle};
    if (held == nullptr)
        return nullptr;
    hint_node *node = new (std::nothrow) hint_node{held, nullptr};
    if (node == nullptr) {
        log_error("Failed to allocate hint node array");
        delete held;
    }
    return node;
}

}  // namespace

void perform_hint_action_profile(int32_t hint_id, int32_t profile) {
    if (!is_available())
        return;
    const int lock_handle = library.perf_lock_use_profile(acquire_handle, profile);
    if (lock_handle == lock_failed) {
        log_error("Failed to acquire lock for the requested profile");
        return;
    }
    hint_node *node = create_hint(hint_id, lock_handle);
    if (node == nullptr) {
        release_lock(lock_handle);
        log_error("Failed to process profile hint.");
        return;
    }
    hint_node **link = &library.hints;
    while (*link != nullptr)
        link = &(*link)->next;
    *link = node;
}

void undo_hint_action_profile(int32_t hint_id) {
    if (!is_available())
        return;
    hint_node **link = &library.hints;
    while (*link != nullptr && (*link)->held->hint_id != hint_id)
        link = &(*link)->next;
    hint_node *node = *link;
    if (node == nullptr) {
        log_error("Invalid profile hint ID.");
        return;
    }
    if (release_lock(node->held->lock_handle) == lock_failed)
        log_error("Profile release failed.");
    *link = node->next;
    delete node->held;
    delete node;
}

void init_profile_manager_ext(void) {
    dlerror();
    char path[PROPERTY_VALUE_MAX];
    if (property_get("ro.vendor.extension_library", path, nullptr) > 0) {
        library.handle = device_library_open(path, RTLD_NOW);
        if (library.handle == nullptr)
            log_error("Unable to open %s: %s\n", path, dlerror());
    }
    if (library.handle == nullptr) {
        log_error("Failed to get qcopt handle.\n");
        return;
    }
    library.perf_lock_use_profile = reinterpret_cast<int (*)(int, int)>(
        device_library_symbol(library.handle, "perf_lock_use_profile"));
    if (library.perf_lock_use_profile == nullptr)
        log_error("Unable to get perf_lock_use_profile function handle.\n");
}

void cleanup_profile_manager_ext(void) {
    if (library.handle != nullptr && dlclose(library.handle) != 0)
        log_error("Error occurred while closing qc-opt library.");
}
