// Where a path of the device lies. On a phone it is the path itself; on a host it lies below the
// directory that DVXD_ROOT names, so that several devices can stand side by side.
#pragma once

#include <cstddef>

// Writes the host's path of the device's absolute `path` to `buffer`; a relative path stays as it
// is. 0, or -ENAMETOOLONG with an empty buffer. Any thread may call.
int device_path(char *buffer, size_t size, const char *path);

// Opens a library of the device as dlopen does: null on failure, with the reason in dlerror.
void *device_library_open(const char *path, int flags);

// An entry point of an open library, as dlsym does: null when it has none of that name, with the
// reason in dlerror.
void *device_library_symbol(void *library, const char *name);
