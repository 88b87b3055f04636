#include "resource/hw_library.h"

#include <dlfcn.h>

#include "core/log.h"
#include "core/vendor_library.h"
#include "platform/device_root.h"

namespace {

constinit void *handle = nullptr;

}  // namespace

int get_handle(void) {
    if (handle != nullptr) {
        log_error("handle already allocated");
        return 0;
    }
    handle = vendor_library_open("libhwresource.so", "lib32: ", "lib64: ");
    return handle != nullptr ? 0 : -EINVAL;
}

bool hw_library_is_open(void) {
    return handle != nullptr;
}

void *hw_library_symbol(const char *symbol) {
    void *entry = device_library_symbol(handle, symbol);
    if (entry == nullptr)
        log_error("Failed to dlsym %s : %s", symbol, dlerror());
    return entry;
}
