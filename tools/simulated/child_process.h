// Work in a process of its own: a process has at most one simulated daemon.
#pragma once

#include <functional>
#include <string>
#include <vector>

struct apart_result {
    std::string said;   // what the work answered
    std::string error;  // empty, or how the process ended instead
};

// Runs the work in a child of this process, and waits for it.
apart_result run_apart(const std::function<std::string()> &work);

// Runs many, so many processes at once; answers in their order.
std::vector<apart_result> run_all_apart(const std::vector<std::function<std::string()>> &works,
                                        int jobs);
