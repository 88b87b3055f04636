#include "tools/base/exit_status.h"

#include <stdio.h>

#include "tools/base/shown.h"

void warn(const std::string &remark) {
    fprintf(stderr, "dvxctl: %s\n", shown(remark).c_str());
}

int fail(const std::string &reason) {
    warn(reason);
    return reason.starts_with("no daemon") ? exit_no_daemon : exit_found;
}

int refuse(const std::string &reason) {
    warn(reason);
    return exit_input;
}
