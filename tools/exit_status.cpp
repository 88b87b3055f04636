#include "tools/exit_status.h"

#include <stdio.h>

int fail(const std::string &reason) {
    fprintf(stderr, "dvxctl: %s\n", reason.c_str());
    return reason.starts_with("no daemon") ? exit_no_daemon : exit_found;
}

int refuse(const std::string &reason) {
    fprintf(stderr, "dvxctl: %s\n", reason.c_str());
    return exit_input;
}
