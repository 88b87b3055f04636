// The state of a daemon with its last decisions, as far as its notes or its log tell.
#pragma once

#include <deque>
#include <map>
#include <string>

#include "tools/explain/daemon_state.h"
#include "tools/explain/decision.h"
#include "tools/explain/history.h"

struct status {
    daemon_state state;
    std::deque<decision> last;
    history_source source;
    int daemon = 0;  // process id; 0: a log alone
    double up_s = 0;
    std::map<std::string, std::optional<bool>> services;  // whether each answers, by its name
};

// Of the daemon on `root`, whose process is `daemon`, or from a recording or a log where `file` is
// not empty.
status status_of(const std::string &root, int daemon, const std::string &file);

// Intervals that the measurement under way wants.
int status_measurement_length(const status &known);

// Prints it, with "not known" for what nothing has told.
void status_print(const status &known);
