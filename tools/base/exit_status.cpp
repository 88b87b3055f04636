#include "tools/base/exit_status.h"

#include <stdio.h>

#include "tools/base/shown.h"

void warn(const std::string &remark) {
    fprintf(stderr, "dvxctl: %s\n", shown(remark).c_str());
}

void warn_of(const std::string &name, const std::vector<std::string> &remarks) {
    const std::string begin = name + ": ";
    for (const std::string &remark : remarks)
        warn(begin + remark);
}

int end_with(const result &came_out) {
    if (came_out.kind == failure::none)
        return 0;
    warn(came_out.reason);
    switch (came_out.kind) {
        case failure::no_daemon:
            return exit_no_daemon;
        case failure::input:
            return exit_input;
        default:
            return exit_found;
    }
}

int fail(const std::string &reason) {
    return end_with({failure::failed, reason});
}

int fail_without_daemon(const std::string &root) {
    return end_with({failure::no_daemon, "no daemon runs on " + root});
}

int refuse(const std::string &reason) {
    return end_with({failure::input, reason});
}
