#include "platform/host/property_files.h"

#include <cutils/properties.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr char name_characters[] =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-@:";

// Whether a property has this name: none that could lead out of the directory, nor one that is
// hidden like the files under replacement.
bool is_name(const char *key) {
    const size_t length = strlen(key);
    return length > 0 && length < PROPERTY_KEY_MAX && key[0] != '.' &&
           strspn(key, name_characters) == length;
}

// The file of a property, or of its replacement with `suffix`.
bool make_path(char *path, const char *directory, const char *before, const char *key,
               const char *suffix) {
    return snprintf(path, PATH_MAX, "%s/%s%s%s", directory, before, key, suffix) < PATH_MAX;
}

}  // namespace

size_t property_file_read(const char *directory, const char *key, char *value) {
    char path[PATH_MAX];
    value[0] = '\0';
    if (!is_name(key) || !make_path(path, directory, "", key, ""))
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

int property_file_write(const char *directory, const char *key, const char *value) {
    char path[PATH_MAX];
    char replacement[PATH_MAX];
    char suffix[32];
    const size_t length = strlen(value);
    snprintf(suffix, sizeof(suffix), ".%ld", syscall(SYS_gettid));
    if (length >= PROPERTY_VALUE_MAX || !is_name(key) || !make_path(path, directory, "", key, "") ||
        !make_path(replacement, directory, ".", key, suffix))
        return -1;
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
