#include "tools/base/processes.h"

#include <stdio.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "tools/base/files.h"

namespace fs = std::filesystem;

namespace {

// The network namespace of a process, or an empty text where it is not shown to us.
fs::path network_of(const std::string &process) {
    std::error_code error;
    return fs::read_symlink("/proc/" + process + "/ns/net", error);
}

// What /proc/PID/stat says of a process behind its name: its state, its parent and so on; empty
// where there is none.
std::string stat_of(int process) {
    const std::string stat = read_file("/proc/" + std::to_string(process) + "/stat");
    const size_t behind_name = stat.rfind(") ");
    return behind_name != std::string::npos ? stat.substr(behind_name + 2) : "";
}

}  // namespace

std::vector<int> processes_named(const std::string &name) {
    std::vector<int> found;
    std::error_code error;
    for (const auto &entry : fs::directory_iterator("/proc", error)) {
        const std::string number = entry.path().filename();
        if (std::all_of(number.begin(), number.end(), isdigit) &&
            read_file(entry.path() / "comm").starts_with(name))
            found.push_back(std::stoi(number));
    }
    return found;
}

int process_that_has_open(const std::string &name, const std::string &path) {
    std::error_code error;
    if (!fs::exists(path, error))
        return 0;
    for (const int process : processes_named(name))
        for (const auto &file :
             fs::directory_iterator("/proc/" + std::to_string(process) + "/fd", error))
            if (fs::equivalent(file.path(), path, error))
                return process;
    return 0;
}

std::string process_environment(int process, const std::string &name) {
    const std::string all = '\0' + read_file("/proc/" + std::to_string(process) + "/environ");
    const std::string begin = std::string(1, '\0') + name + "=";
    const size_t at = all.find(begin);
    return at != std::string::npos ? std::string(all.c_str() + at + begin.size()) : "";
}

bool process_shares_network(int process) {
    const fs::path network = network_of(std::to_string(process));
    return network.empty() || network == network_of("self");
}

double process_age_s(int process) {
    constexpr char start_field[] =
        "%*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %*u %*u %*d %*d %*d %*d %*d %*d %lld";
    long long ticks = 0;
    double up_s = 0;
    if (sscanf(stat_of(process).c_str(), start_field, &ticks) != 1 ||
        sscanf(read_file("/proc/uptime").c_str(), "%lf", &up_s) != 1)
        return 0;
    return up_s - static_cast<double>(ticks) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

bool process_is_stopped(int process) {
    const std::string stat = stat_of(process);
    return stat.starts_with('T') || stat.starts_with('t');
}
