#include "platform/device_root.h"

#include <dlfcn.h>
#include <errno.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>

#include "platform/host/recording.h"

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
    const bool fits = device_path(host_path, sizeof(host_path), path) == 0;
    void *library = dlopen(fits ? host_path : "/", flags);
    recording_note_library(path, library != nullptr);
    if (library != nullptr)  // else the reason of its failure stays
        recording_observe_library(library);
    return library;
}

void *device_library_symbol(void *library, const char *name) {
    void *symbol = dlsym(library, name);
    recording_note_library(name, symbol != nullptr);
    return symbol;
}
