#include "core/file_util.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "core/log.h"

namespace {

// Opens an existing file for writing. Its descriptor, or a negative errno value.
int open_existing(const char *path) {
    if (path == nullptr)
        return -EINVAL;
    const int fd = open(path, O_RDWR | O_CLOEXEC);
    return fd >= 0 ? fd : -errno;
}

}  // namespace

int32_t check_kernel_node(const char *path) {
    return access(path, F_OK) == 0 ? 0 : -EINVAL;
}

int32_t read_line_from_file(const char *path, char *buffer, int32_t size) {
    FILE *file = fopen(path, "re");
    if (file == nullptr)
        return -1;
    const int32_t result =
        fgets(buffer, size, file) != nullptr ? static_cast<int32_t>(strlen(buffer)) : ferror(file);
    fclose(file);
    return result;
}

int32_t read_prop_from_file(const char *path, char *buffer, const char *needle, int32_t size) {
    FILE *file = fopen(path, "re");
    if (file == nullptr)
        return -EINVAL;
    int32_t result = -EINVAL;
    // A buffer without room for a character would never get to the end of the file.
    while (result < 0 && size > 1 && fgets(buffer, size, file) != nullptr) {
        buffer[size - 1] = '\0';
        if (strstr(buffer, needle) != nullptr)
            result = static_cast<int32_t>(strlen(buffer));
    }
    fclose(file);
    return result;
}

int32_t write_to_file(const char *path, const void *data, int64_t length) {
    const int fd = open_existing(path);
    if (fd < 0) {
        log_error("File [%s] Open Failed : %d", path != nullptr ? path : "(null)", fd);
        return fd;
    }
    const char *rest = static_cast<const char *>(data);
    for (int64_t left = length; left > 0;) {
        const ssize_t count = write(fd, rest, static_cast<size_t>(left));
        if (count <= 0) {
            const int error = count < 0 ? errno : EIO;
            close(fd);
            return -error;
        }
        rest += count;
        left -= count;
    }
    close(fd);
    return static_cast<int32_t>(length);
}
