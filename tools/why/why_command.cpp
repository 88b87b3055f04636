// dvxctl why: what it prints.
#include <errno.h>
#include <stdio.h>
#include <string.h>

#include <nlohmann/json.hpp>

#include "tools/daemon_process.h"
#include "tools/exit_status.h"
#include "tools/replay/follow.h"
#include "tools/terminal.h"
#include "tools/why/moments.h"
#include "tools/why/why.h"

using nlohmann::ordered_json;

namespace {

void print_decision(const decision &made, bool json) {
    if (!json) {
        print_folded(decision_text(made), decision_indent);
        return;
    }
    const ordered_json line = why_describe(made);
    printf("%s\n", line.dump(-1, ' ', false, ordered_json::error_handler_t::replace).c_str());
}

}  // namespace

int why_command(const std::string &path, const std::string &root, bool json) {
    daemon_state state;
    size_t decisions = 0;
    const auto begin = [&](const moment_source &source) {
        state = daemon_state_make(source.figures);
    };
    const auto take = [&](const moment &now) {
        for (const decision &made : why_take(&state, now)) {
            print_decision(made, json);
            ++decisions;
        }
        if (path.empty())
            fflush(stdout);
    };
    moment_source source;
    if (path.empty()) {
        if (daemon_process(root) == 0) {
            fprintf(stderr, "dvxctl: no daemon runs on %s\n", root.c_str());
            return exit_no_daemon;
        }
        follow_begin();
        source = moments_of_device(root, true, begin, take);
    } else {
        source = moments_of_file(path, begin, take);
    }
    const char *name = path.empty() ? root.c_str() : path.c_str();
    if (!source.error.empty()) {
        fprintf(stderr, "dvxctl: %s: %s\n", name, source.error.c_str());
        return exit_input;
    }
    for (const std::string &remark : source.remarks)
        fprintf(stderr, "dvxctl: %s: %s\n", name, remark.c_str());
    if (decisions == 0)
        fprintf(stderr, "dvxctl: %s: no decision in it\n", name);
    return 0;
}
