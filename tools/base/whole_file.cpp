#include "tools/base/whole_file.h"

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace {

constexpr size_t block = size_t{1} << 20;
constexpr size_t piped_max = size_t{1} << 30;

void map(whole_file *file, int fd, size_t size) {
    void *start = size > 0 ? mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fd, 0) : nullptr;
    if (start == MAP_FAILED)
        file->error = strerror(errno);
    else
        file->text = {static_cast<const char *>(start), size};
    if (start != MAP_FAILED && start != nullptr)
        file->mapped = {start, [size](void *mapped) { munmap(mapped, size); }};
}

void read_pipe(whole_file *file, int fd) {
    file->piped = std::make_unique<std::string>();
    std::string *content = file->piped.get();
    for (;;) {
        const size_t before = content->size();
        content->resize(before + block);
        const ssize_t count = read(fd, content->data() + before, block);
        content->resize(before + static_cast<size_t>(std::max<ssize_t>(count, 0)));
        if (count < 0 && errno != EINTR)
            file->error = strerror(errno);
        if (content->size() > piped_max)
            file->error = "is more than 1 GiB; give it as a file";
        if (count == 0 || !file->error.empty())
            break;
    }
    file->text = *content;
}

}  // namespace

whole_file whole_file_open(const std::string &path) {
    whole_file file;
    const int fd = path == "-" ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status = {};
    if (fd < 0 || fstat(fd, &status) != 0)
        file.error = strerror(errno);
    else if (S_ISDIR(status.st_mode))
        file.error = "is a directory";
    else if (S_ISREG(status.st_mode) && path != "-")
        map(&file, fd, static_cast<size_t>(status.st_size));
    else
        read_pipe(&file, fd);
    if (fd >= 0)
        close(fd);
    return file;
}
