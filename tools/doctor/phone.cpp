#include "tools/doctor/phone.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "device/virtual_device.h"

namespace {

constexpr char getprop[] = "/system/bin/getprop";
constexpr char dumpsys[] = "/system/bin/dumpsys";

// What a program of the phone prints when it is given these words; none where it cannot be run or
// fails.
std::optional<std::string> ask(std::vector<std::string> words) {
    std::vector<char *> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string &word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return std::nullopt;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    const int error =
        posix_spawn(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    std::string said;
    char buffer[4096];
    for (ssize_t count; error == 0 && (count = read(ends[0], buffer, sizeof(buffer))) > 0;)
        said.append(buffer, static_cast<size_t>(count));
    close(ends[0]);
    int status = 0;
    if (error != 0 || waitpid(process, &status, 0) != process || status != 0)
        return std::nullopt;
    return said.substr(0, said.find_last_not_of('\n') + 1);
}

}  // namespace

bool phone_is_here(const std::string &root) {
    return root == "/" && access(getprop, X_OK) == 0;
}

std::optional<std::string> phone_property(const std::string &root, const std::string &name) {
    if (device_exists(root))
        return device_property(root, name);
    return phone_is_here(root) ? ask({getprop, name}) : std::nullopt;
}

std::optional<double> phone_panel_hz(const std::string &root) {
    if (!phone_is_here(root))
        return std::nullopt;
    // Its first line is the refresh period in nanoseconds.
    const std::optional<std::string> said = ask({dumpsys, "SurfaceFlinger", "--latency"});
    const double period_ns = said ? strtod(said->c_str(), nullptr) : 0;
    return period_ns > 0 ? std::optional(std::round(1e10 / period_ns) / 10) : std::nullopt;
}
