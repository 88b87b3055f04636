#include "tools/base/output_file.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <utility>

#include "tools/base/processes.h"

namespace fs = std::filesystem;

namespace {

constexpr size_t block = size_t{1} << 20;
constexpr mode_t usual_mode = 0666;  // less what the user's mask takes

void fail(output_file *file) {
    file->error = file->path + ": " + strerror(errno);
}

mode_t file_mask() {
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

// A file in the target's folder: without a name where the file system has such, so that nothing
// stays behind whatever ends this program.
void open_beside(output_file *file, mode_t mode) {
    const std::string folder = fs::path(file->target).parent_path();
    file->fd = open(folder.empty() ? "." : folder.c_str(), O_WRONLY | O_TMPFILE | O_CLOEXEC, mode);
    if (file->fd < 0) {
        file->beside = file->target + ".XXXXXX";
        file->fd = mkostemp(file->beside.data(), O_CLOEXEC);
    }
    if (file->fd >= 0 && fchmod(file->fd, mode) == 0)
        return;
    fail(file);
    file->beside.clear();
}

bool write_pending(output_file *file) {
    size_t done = 0;
    while (done < file->pending.size()) {
        const ssize_t count =
            write(file->fd, file->pending.data() + done, file->pending.size() - done);
        if (count > 0) {
            done += static_cast<size_t>(count);
        } else if (count == 0 || errno != EINTR) {
            fail(file);
            break;
        }
    }
    file->pending.clear();
    return file->error.empty();
}

// Gives a file without a name one beside its target.
bool name_beside(output_file *file) {
    if (!file->beside.empty())
        return true;
    const std::string own = "/proc/self/fd/" + std::to_string(file->fd);
    for (int tries = 0; tries < 100; ++tries) {
        const std::string name =
            file->target + "." + std::to_string(getpid()) + "." + std::to_string(tries);
        if (linkat(AT_FDCWD, own.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0) {
            file->beside = name;
            return true;
        }
        if (errno != EEXIST)
            break;
    }
    return false;
}

}  // namespace

std::string output_check(const std::string &path, const std::vector<std::string> &inputs) {
    std::error_code error;
    for (const std::string &input : inputs)
        if (fs::equivalent(input, path, error))
            return path + " is to be read, and would be overwritten";
    const int daemon = process_that_has_open("dvxd", path);
    return daemon == 0 ? "" : path + " is written by the running dvxd " + std::to_string(daemon);
}

output_file output_open(const std::string &path, const std::vector<std::string> &inputs) {
    output_file file;
    file.path = path;
    struct stat status = {};
    const bool exists = stat(path.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) {
        file.fd = open(path.c_str(), O_WRONLY | O_CLOEXEC);
        if (file.fd < 0)
            fail(&file);
        return file;
    }
    file.error = output_check(path, inputs);
    if (!file.error.empty())
        return file;
    if (exists && access(path.c_str(), W_OK) != 0) {
        fail(&file);
        return file;
    }
    std::error_code error;
    file.target = exists ? fs::canonical(path, error).string() : path;
    open_beside(&file, exists ? status.st_mode & 0777 : usual_mode & ~file_mask());
    return file;
}

bool output_write(output_file *file, std::string_view text) {
    if (!file->error.empty())
        return false;
    file->pending += text;
    file->size += text.size();
    return file->pending.size() < block || write_pending(file);
}

std::string output_finish(output_file *file) {
    bool good = file->error.empty() && write_pending(file);
    if (good && !file->target.empty() && !name_beside(file)) {
        fail(file);
        good = false;
    }
    // Some file systems say only here that they had no room.
    if (file->fd >= 0 && close(std::exchange(file->fd, -1)) != 0 && good) {
        fail(file);
        good = false;
    }
    if (good && !file->target.empty() && rename(file->beside.c_str(), file->target.c_str()) != 0) {
        fail(file);
        good = false;
    }
    if (!good)
        output_abandon(file);
    return file->error;
}

void output_abandon(output_file *file) {
    if (file->fd >= 0)
        close(std::exchange(file->fd, -1));
    if (!file->beside.empty())
        unlink(file->beside.c_str());
    file->beside.clear();
}

output_file output_continue(const std::string &path, size_t kept,
                            const std::vector<std::string> &inputs) {
    output_file file;
    file.path = path;
    file.size = kept;
    file.error = output_check(path, inputs);
    if (!file.error.empty())
        return file;
    file.fd = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, usual_mode);
    if (file.fd >= 0 && flock(file.fd, LOCK_EX | LOCK_NB) != 0)
        file.error = path + ": another program writes it";
    else if (file.fd < 0 || ftruncate(file.fd, static_cast<off_t>(kept)) != 0)
        fail(&file);
    return file;
}

bool output_append(output_file *file, const std::string &line) {
    file->pending = line + "\n";
    const size_t length = file->pending.size();
    if (write_pending(file)) {
        file->size += length;
        return true;
    }
    [[maybe_unused]] const int cut = ftruncate(file->fd, static_cast<off_t>(file->size));
    return false;
}

std::string output_whole(const std::string &path, std::string_view text,
                         const std::vector<std::string> &inputs) {
    output_file file = output_open(path, inputs);
    output_write(&file, text);
    return output_finish(&file);
}
