// dvxctl why: what it prints.
#include <errno.h>
#include <stdio.h>
#include <string.h>

#include "tools/base/daemon_process.h"
#include "tools/base/exit_status.h"
#include "tools/base/json.h"
#include "tools/base/terminal.h"
#include "tools/device/follow.h"
#include "tools/explain/moments.h"
#include "tools/explain/why.h"

using nlohmann::ordered_json;

namespace {

void print_decision(const decision &made, bool json) {
    if (!json) {
        print_folded(decision_text(made), decision_indent);
        return;
    }
    const ordered_json line = why_describe(made);
    printf("%s\n", json_write(line).c_str());
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
        if (daemon_process(root) == 0)
            return fail_without_daemon(root);
        follow_begin();
        source = moments_of_device(root, true, begin, take);
    } else {
        source = moments_of_file(path, begin, take);
    }
    const std::string name = path.empty() ? root : path;
    if (!source.error.empty())
        return refuse(name + ": " + source.error);
    for (const std::string &remark : source.remarks)
        warn(name + ": " + remark);
    if (decisions == 0)
        warn(name + ": no decision in it");
    return 0;
}
