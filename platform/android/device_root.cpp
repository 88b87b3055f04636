#include "platform/device_root.h"

#include <dlfcn.h>
#include <errno.h>
#include <stdio.h>

int device_path(char *buffer, size_t size, const char *path) {
    const int length = snprintf(buffer, size, "%s", path);
    if (length >= 0 && static_cast<size_t>(length) < size)
        return 0;
    buffer[0] = '\0';
    return -ENAMETOOLONG;
}

void *device_library_open(const char *path, int flags) {
    return dlopen(path, flags);
}

void *device_library_symbol(void *library, const char *name) {
    return dlsym(library, name);
}
