#include <cutils/properties.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/device_root.h"

namespace {

constexpr char name_characters[] =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-@:";

// The file of a property. A name that could lead out of the directory, or one that is hidden like
// the files under replacement, has none.
bool property_path(char *path, size_t size, const char *key) {
    const size_t length = strlen(key);
    if (length == 0 || length >= PROPERTY_KEY_MAX || key[0] == '.' ||
        strspn(key, name_characters) != length)
        return false;
    char device[PROPERTY_KEY_MAX + 16];
    snprintf(device, sizeof(device), "/properties/%s", key);
    return device_path(path, size, device) == 0;
}

// The value in the file, cut to what a property can hold; its length, 0 when there is none.
size_t read_value(const char *key, char *value) {
    char path[PATH_MAX];
    if (!property_path(path, sizeof(path), key))
        return 0;
    const int fd = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return 0;
    char content[PROPERTY_VALUE_MAX];  // one more than a value, for the newline behind it
    const ssize_t count = read(fd, content, sizeof(content));
    close(fd);
    size_t length = count > 0 ? static_cast<size_t>(count) : 0;
    if (length > 0 && content[length - 1] == '\n')
        --length;
    if (length >= PROPERTY_VALUE_MAX)
        length = PROPERTY_VALUE_MAX - 1;
    memcpy(value, content, length);
    value[length] = '\0';
    return strlen(value);
}

}  // namespace

extern "C" int property_get(const char *key, char *value, const char *default_value) {
    value[0] = '\0';
    const size_t length = read_value(key, value);
    if (length > 0)
        return static_cast<int>(length);
    if (default_value == nullptr)
        return 0;
    const size_t default_length = strnlen(default_value, PROPERTY_VALUE_MAX - 1);
    memcpy(value, default_value, default_length);
    value[default_length] = '\0';
    return static_cast<int>(default_length);
}

extern "C" int property_set(const char *key, const char *value) {
    char path[PATH_MAX];
    const size_t length = strlen(value);
    if (length >= PROPERTY_VALUE_MAX || !property_path(path, sizeof(path), key))
        return -1;

    char replacement[PATH_MAX + 32];
    const int directory = static_cast<int>(strrchr(path, '/') - path);
    snprintf(replacement, sizeof(replacement), "%.*s/.%s.%ld", directory, path, key,
             syscall(SYS_gettid));
    const int fd = open(replacement, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0)
        return -1;
    const bool written = write(fd, value, length) == static_cast<ssize_t>(length);
    close(fd);
    if (written && rename(replacement, path) == 0)
        return 0;
    unlink(replacement);
    return -1;
}
