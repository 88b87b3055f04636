#include "resource/hw_library.h"

#include <dlfcn.h>

#include "core/log.h"
#include "platform/device_root.h"

namespace {

constexpr char library_32[] = "/vendor/lib/libhwresource.so";
constexpr char library_64[] = "/vendor/lib64/libhwresource.so";

constinit void *handle = nullptr;

}  // namespace

int get_handle(void) {
    if (handle != nullptr) {
        log_error("handle already allocated");
        return 0;
    }
    handle = device_library_open(library_32, RTLD_LAZY);
    if (handle != nullptr)
        return 0;
    log_error("lib32: %s", dlerror());
    handle = device_library_open(library_64, RTLD_LAZY);
    if (handle != nullptr)
        return 0;
    log_error("lib64: %s", dlerror());
    return -EINVAL;
}

bool hw_library_is_open(void) {
    return handle != nullptr;
}

void *hw_library_symbol(const char *symbol) {
    void *entry = dlsym(handle, symbol);
    if (entry == nullptr)
        log_error("Failed to dlsym %s : %s", symbol, dlerror());
    return entry;
}
