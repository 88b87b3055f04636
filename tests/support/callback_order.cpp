#include "tests/support/callback_order.h"

#include <stdio.h>
#include <string.h>

#include <map>
#include <sstream>
#include <vector>

namespace {

// An event that is being delivered, and how many of its callbacks have run.
struct delivery {
    int event;
    size_t next;
};

using registrations = std::map<int, std::vector<std::string>>;

bool run_callback(const registrations &lists, std::vector<delivery> *stack,
                  const std::string &name) {
    const auto list_of = [&](const delivery &top) -> const std::vector<std::string> & {
        static const std::vector<std::string> none;
        const auto found = lists.find(top.event);
        return found != lists.end() ? found->second : none;
    };
    while (!stack->empty() && stack->back().next == list_of(stack->back()).size())
        stack->pop_back();
    return !stack->empty() && list_of(stack->back())[stack->back().next++] == name;
}

}  // namespace

callback_order check_callback_order(const std::string &log) {
    registrations lists;
    std::map<int, std::vector<delivery>> threads;
    callback_order order = {0, ""};
    bool started = false;
    std::istringstream lines(log);
    for (std::string line; order.broken.empty() && std::getline(lines, line);) {
        char name[32];
        int thread = 0;
        int event = 0;
        const size_t text = line.find(" : ");
        if (text == std::string::npos || sscanf(line.c_str(), "%*s %*s %*d %d", &thread) != 1)
            continue;
        const char *said = line.c_str() + text + 3;
        started |= strcmp(said, "Halvane Start Successfully.") == 0;
        if (sscanf(said, "CB[%31[^]]] is registered for EV[%d]", name, &event) == 2) {
            lists[event].push_back(name);
        } else if (started && sscanf(said, "EV : %d", &event) == 1) {
            threads[thread].push_back({event, 0});
        } else if (sscanf(said, "Callback for %31s action start", name) == 1 &&
                   !threads[thread].empty()) {
            ++order.callbacks;
            if (!run_callback(lists, &threads[thread], name))
                order.broken = line;
        }
    }
    return order;
}
