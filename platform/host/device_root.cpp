#include "platform/device_root.h"

#include <dlfcn.h>
#include <errno.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>

int device_path(char *buffer, size_t size, const char *path) {
    const char *root = getenv("DVXD_ROOT");
    const int length =
        snprintf(buffer, size, "%s%s", root != nullptr && path[0] == '/' ? root : "", path);
    if (length >= 0 && static_cast<size_t>(length) < size)
        return 0;
    buffer[0] = '\0';
    return -ENAMETOOLONG;
}

void *device_library_open(const char *path, int flags) {
    char host_path[PATH_MAX];
    // Of a path that is too long nothing is left; the loader says that there is no such library.
    if (device_path(host_path, sizeof(host_path), path) != 0)
        return dlopen("/", flags);
    return dlopen(host_path, flags);
}
