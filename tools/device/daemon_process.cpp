#include "tools/base/daemon_process.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "device/virtual_device.h"

namespace fs = std::filesystem;

namespace {

// The network namespace of a process, or an empty text where it is not shown to us.
fs::path network_of(const std::string &process) {
    std::error_code error;
    return fs::read_symlink("/proc/" + process + "/ns/net", error);
}

bool lives_on(int process, const std::string &root) {
    const std::string its = process_environment(process, "DVXD_ROOT");
    std::error_code error;
    return its.empty() ? root == "/" : fs::equivalent(its, root, error);
}

std::vector<int> daemons() {
    std::vector<int> found;
    std::error_code error;
    for (const auto &entry : fs::directory_iterator("/proc", error)) {
        const std::string name = entry.path().filename();
        if (std::all_of(name.begin(), name.end(), isdigit) &&
            device_read_file(entry.path() / "comm").starts_with("dvxd"))
            found.push_back(std::stoi(name));
    }
    return found;
}

}  // namespace

std::string process_environment(int process, const std::string &name) {
    const std::string all =
        '\0' + device_read_file("/proc/" + std::to_string(process) + "/environ");
    const std::string begin = std::string(1, '\0') + name + "=";
    const size_t at = all.find(begin);
    return at != std::string::npos ? std::string(all.c_str() + at + begin.size()) : "";
}

bool process_shares_network(int process) {
    const fs::path network = network_of(std::to_string(process));
    return network.empty() || network == network_of("self");
}

int daemon_process(const std::string &root) {
    const int known = device_daemon_process(root);
    if (known != 0)
        return known;
    for (const int process : daemons())
        if (lives_on(process, root) && process_shares_network(process))
            return process;
    return 0;
}

int daemon_that_writes(const std::string &path) {
    std::error_code error;
    if (!fs::exists(path, error))
        return 0;
    for (const int process : daemons())
        for (const auto &file :
             fs::directory_iterator("/proc/" + std::to_string(process) + "/fd", error))
            if (fs::equivalent(file.path(), path, error))
                return process;
    return 0;
}

std::string process_stat(int process) {
    const std::string stat = device_read_file("/proc/" + std::to_string(process) + "/stat");
    const size_t behind_name = stat.rfind(") ");
    return behind_name != std::string::npos ? stat.substr(behind_name + 2) : "";
}

bool process_is_stopped(int process) {
    const std::string stat = process_stat(process);
    return stat.starts_with('T') || stat.starts_with('t');
}
