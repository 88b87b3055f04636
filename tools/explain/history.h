// The steps of a daemon's life, from whatever tells of it: a recording, a log, a virtual device.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "simulator/simulator.h"
#include "tools/base/whole_file.h"
#include "tools/recording/step.h"

struct history_source {
    std::string error;  // empty, or what is wrong, with the line
    std::vector<std::string> remarks;
    bool recorded = false;  // what the daemon took is in it
    std::string device;     // empty: not known
    std::string daemon;     // its version; empty: not known
    simulated_figures figures;
    int64_t wall_ns = 0;  // of the wall clock at the first step; 0: not known
};

// Tells of a source before its first step.
using source_taker = std::function<void(const history_source &source)>;

// Reads a recording or a log, "-" for standard input, to its end.
history_source history_of_file(const std::string &path, const source_taker &begin,
                               const step_taker &take);

// The same of what has been read already.
history_source history_of_content(whole_file content, const source_taker &begin,
                                  const step_taker &take);

// What the daemon on `root` has done since its start, from its notes or from its log, and with
// `follow` what it does until Ctrl-C.
history_source history_of_device(const std::string &root, bool follow, const source_taker &begin,
                                 const step_taker &take);
