// What dvxctl's exit status says.
#pragma once

#include <string>
#include <vector>

constexpr int exit_found = 1;      // it could not be done, or what was asked about is so
constexpr int exit_input = 2;      // words or files of no use
constexpr int exit_no_daemon = 3;  // no daemon runs

struct exit_meaning {
    int status;
    const char *words;
};

// All of them, for people.
constexpr exit_meaning exit_meanings[] = {
    {0, "good"},
    {exit_found,
     "something was found: a difference, a failure, something off; or it could not be done, or the "
     "daemon rejected it"},
    {exit_input, "wrong words, or input that is of no use"},
    {exit_no_daemon, "no daemon runs"},
    {130, "interrupted while frames were played"},
};

// Says something beside a command's output, to standard error; what comes from outside may be in
// it.
void warn(const std::string &remark);

// Says what there is to say of a file, or of a device.
void warn_of(const std::string &name, const std::vector<std::string> &remarks);

// How something that was asked for came out.
enum class failure {
    none,
    failed,     // it could not be done
    input,      // what was given is of no use
    rejected,   // the daemon has something against it
    no_daemon,  // nobody was there to do it
};

struct [[nodiscard]] result {
    failure kind = failure::none;
    std::string reason;  // empty where all is well
};

// Says why a command ends, where it has a reason. The exit status.
int end_with(const result &came_out);

// Says why a command ends without having done it. The exit status.
int fail(const std::string &reason);

// Says why what a command was given is of no use. The exit status.
int refuse(const std::string &reason);

// Says that no daemon runs on a device. The exit status.
int fail_without_daemon(const std::string &root);
