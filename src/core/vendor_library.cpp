#include "core/vendor_library.h"

#include <dlfcn.h>
#include <stdio.h>

#include "core/log.h"
#include "platform/device_root.h"

namespace {

constexpr int path_max = 64;

void *open_in(const char *directory, const char *file, const char *prefix) {
    char path[path_max];
    snprintf(path, sizeof(path), "%s/%s", directory, file);
    void *library = device_library_open(path, RTLD_LAZY);
    if (library == nullptr)
        log_error("%s%s", prefix, dlerror());
    return library;
}

}  // namespace

void *vendor_library_open(const char *file, const char *prefix_32, const char *prefix_64) {
    void *library = open_in("/vendor/lib", file, prefix_32);
    return library != nullptr ? library : open_in("/vendor/lib64", file, prefix_64);
}
