// Following a daemon while it lives: what it notes itself, where it does, or what can be seen of it
// from outside.
#pragma once

#include <functional>
#include <string>

// When following ends, besides at Ctrl-C.
struct follow_limit {
    int64_t end_ns = INT64_MAX;  // of the monotonic clock
    int daemon = 0;              // its end is one too; 0: not known
};

// From now on Ctrl-C ends what follows instead of the program.
void follow_begin();
bool follow_is_over(const follow_limit &limit);

// Gives the lines of a file as they are written, without their ends, from the first on, until the
// limit or until `take` answers false; `idle` is called whenever there is nothing more for now.
// Empty, or what went wrong.
std::string follow_file(
    const std::string &path, const follow_limit &limit,
    const std::function<bool(const std::string &line)> &take,
    const std::function<void()> &idle = [] {});

// The file in which the daemon on `root` notes what it takes; empty where none runs, it does not,
// or what it writes to is no file.
std::string follow_notes_of(const std::string &root, int *daemon);
