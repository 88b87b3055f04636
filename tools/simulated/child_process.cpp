#include "tools/simulated/child_process.h"

#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <deque>

#include "tools/base/exit_status.h"

namespace {

void write_whole(int fd, const std::string &text) {
    for (size_t at = 0; at < text.size();) {
        const ssize_t count = write(fd, text.data() + at, text.size() - at);
        if (count <= 0)
            return;
        at += static_cast<size_t>(count);
    }
}

std::string read_whole(int fd) {
    std::string text;
    char part[65536];
    for (ssize_t count;
         (count = read(fd, part, sizeof(part))) > 0 || (count < 0 && errno == EINTR);)
        text.append(part, static_cast<size_t>(count > 0 ? count : 0));
    return text;
}

// A child's whole life. What nobody caught must not go on into the parent's code.
[[noreturn]] void do_work(const std::function<std::string()> &work, int fd) {
    try {
        write_whole(fd, work());
    } catch (const std::exception &error) {
        warn(std::string("internal error: ") + error.what());
        _exit(exit_found);
    }
    fflush(stdout);
    _exit(0);
}

// A child at work.
struct worker {
    pid_t process = -1;
    int fd = -1;
    size_t work = 0;
    std::string error;
};

worker start(const std::vector<std::function<std::string()>> &works, size_t which) {
    worker child;
    child.work = which;
    int ends[2];
    if (pipe(ends) != 0) {
        child.error = strerror(errno);
        return child;
    }
    child.process = fork();
    if (child.process == 0) {
        close(ends[0]);
        do_work(works[which], ends[1]);
    }
    if (child.process < 0)
        child.error = strerror(errno);
    close(ends[1]);
    child.fd = ends[0];
    return child;
}

child_result finish(const worker &child) {
    child_result result;
    result.error = child.error;
    if (child.process >= 0) {
        int status = 0;
        result.output = read_whole(child.fd);
        if (waitpid(child.process, &status, 0) == child.process && WIFSIGNALED(status))
            result.error = std::string("ended by signal ") + std::to_string(WTERMSIG(status));
        else if (result.output.empty())
            result.error = "said nothing";
    }
    if (child.fd >= 0)
        close(child.fd);
    return result;
}

}  // namespace

child_result run_in_child(const std::function<std::string()> &work) {
    return run_in_children({work}, 1)[0];
}

std::vector<child_result> run_in_children(const std::vector<std::function<std::string()>> &works,
                                          int jobs) {
    std::vector<child_result> results(works.size());
    std::deque<worker> children;
    fflush(stdout);
    // Answers are short, so that those who wait for their turn to be read do not wait to write.
    for (size_t next = 0; next < works.size() || !children.empty();) {
        while (next < works.size() && children.size() < static_cast<size_t>(jobs))
            children.push_back(start(works, next++));
        results[children.front().work] = finish(children.front());
        children.pop_front();
    }
    return results;
}
