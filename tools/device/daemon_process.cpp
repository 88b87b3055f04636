#include "tools/device/daemon_process.h"

#include <filesystem>

#include "device/virtual_device.h"
#include "tools/base/processes.h"

namespace {

bool lives_on(int process, const std::string &root) {
    const std::string its = process_environment(process, "DVXD_ROOT");
    std::error_code error;
    return its.empty() ? root == "/" : std::filesystem::equivalent(its, root, error);
}

}  // namespace

int daemon_process(const std::string &root) {
    const int known = device_daemon_process(root);
    if (known != 0)
        return known;
    for (const int process : processes_named("dvxd"))
        if (lives_on(process, root) && process_shares_network(process))
            return process;
    return 0;
}
