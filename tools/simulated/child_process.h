// Work in a process of its own: a process has at most one simulated daemon.
#pragma once

#include <string.h>

#include <functional>
#include <string>
#include <type_traits>
#include <vector>

struct child_result {
    std::string output;  // what the work answered
    std::string error;   // empty, or how the process ended instead
};

// Runs the work in a child of this process, and waits for it.
child_result run_in_child(const std::function<std::string()> &work);

// Runs many, so many processes at once; answers in their order.
std::vector<child_result> run_in_children(const std::vector<std::function<std::string()>> &works,
                                          int jobs);

// A record without pointers as an answer's first bytes, and back; false where they are not there.
template <typename plain>
std::string child_pack(const plain &value) {
    static_assert(std::is_trivially_copyable_v<plain>);
    return {reinterpret_cast<const char *>(&value), sizeof(value)};
}

template <typename plain>
bool child_unpack(const std::string &output, plain *value) {
    static_assert(std::is_trivially_copyable_v<plain>);
    if (output.size() < sizeof(*value))
        return false;
    memcpy(value, output.data(), sizeof(*value));
    return true;
}
