#include "tools/simulated/apart.h"

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
    worker at_work;
    at_work.work = which;
    int ends[2];
    if (pipe(ends) != 0) {
        at_work.error = strerror(errno);
        return at_work;
    }
    at_work.process = fork();
    if (at_work.process == 0) {
        close(ends[0]);
        do_work(works[which], ends[1]);
    }
    if (at_work.process < 0)
        at_work.error = strerror(errno);
    close(ends[1]);
    at_work.fd = ends[0];
    return at_work;
}

apart_result finish(const worker &at_work) {
    apart_result result;
    result.error = at_work.error;
    if (at_work.process >= 0) {
        int status = 0;
        result.said = read_whole(at_work.fd);
        if (waitpid(at_work.process, &status, 0) == at_work.process && WIFSIGNALED(status))
            result.error = std::string("ended by signal ") + std::to_string(WTERMSIG(status));
        else if (result.said.empty())
            result.error = "said nothing";
    }
    if (at_work.fd >= 0)
        close(at_work.fd);
    return result;
}

}  // namespace

apart_result run_apart(const std::function<std::string()> &work) {
    return run_all_apart({work}, 1)[0];
}

std::vector<apart_result> run_all_apart(const std::vector<std::function<std::string()>> &works,
                                        int jobs) {
    std::vector<apart_result> results(works.size());
    std::deque<worker> at_work;
    fflush(stdout);
    // Answers are short, so that those who wait for their turn to be read do not wait to write.
    for (size_t next = 0; next < works.size() || !at_work.empty();) {
        while (next < works.size() && at_work.size() < static_cast<size_t>(jobs))
            at_work.push_back(start(works, next++));
        results[at_work.front().work] = finish(at_work.front());
        at_work.pop_front();
    }
    return results;
}
