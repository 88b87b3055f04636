#include "platform/host/recording_file.h"

#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/host/held_write.h"

namespace {

constexpr size_t size_max = size_t{2} << 30;  // bytes; days of a game

constinit struct {
    pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
    int fd = -1;  // this and the size under `lock`
    size_t size = 0;
} file;

void complain(const std::string &reason) {
    const std::string line = "dvxd: " + reason + "\n";
    write_held(STDERR_FILENO, line.data(), line.size());
}

// Writes everything, or nothing: what does not fit whole is taken back. 0 or an errno value.
int write_whole(const std::string &lines) {
    if (file.size + lines.size() > size_max)
        return EFBIG;
    for (size_t done = 0; done < lines.size();) {
        const ssize_t count = write_held(file.fd, lines.data() + done, lines.size() - done);
        if (count >= 0) {
            done += static_cast<size_t>(count);
        } else if (errno != EINTR) {
            const int error = errno;
            [[maybe_unused]] const int cut = ftruncate(file.fd, static_cast<off_t>(file.size));
            return error;
        }
    }
    file.size += lines.size();
    return 0;
}

// A file of the recording's own beside a path whose file somebody may be reading, in its place. A
// descriptor, or -1 with errno set.
int open_in_place(const char *path) {
    std::string beside = std::string(path) + ".XXXXXX";
    const int fd = mkostemp(beside.data(), O_APPEND | O_CLOEXEC);
    if (fd < 0)
        return -1;
    fchmod(fd, 0644);
    if (rename(beside.c_str(), path) == 0)
        return fd;
    const int error = errno;
    unlink(beside.c_str());
    close(fd);
    errno = error;
    return -1;
}

// Opens a regular file that is empty. Nothing is waited for: a pipe without a reader would be.
// Null, or why it cannot be had.
const char *open_empty(const char *path) {
    static constexpr char other[] = "it is no regular file";
    struct stat status = {};
    if (stat(path, &status) == 0 && !S_ISREG(status.st_mode))
        return other;
    file.fd = open(path, O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0644);
    if (file.fd < 0 || fstat(file.fd, &status) != 0)
        return strerror(errno);
    if (S_ISREG(status.st_mode) && status.st_size == 0)
        return nullptr;
    close(file.fd);
    file.fd = S_ISREG(status.st_mode) ? open_in_place(path) : -1;
    return !S_ISREG(status.st_mode) ? other : file.fd < 0 ? strerror(errno) : nullptr;
}

}  // namespace

bool recording_file_open(const char *path) {
    const char *wrong = open_empty(path);
    if (wrong != nullptr)
        complain(std::string("cannot record to ").append(path) + ": " + wrong);
    return wrong == nullptr;
}

void recording_file_write(const std::string &lines) {
    pthread_mutex_lock(&file.lock);
    const int error = file.fd >= 0 ? write_whole(lines) : 0;
    if (error != 0) {
        complain(std::string("the recording ends here: ") + strerror(error));
        close(file.fd);
        file.fd = -1;
    }
    pthread_mutex_unlock(&file.lock);
}
