#include "tools/device/delivery.h"

#include <string.h>

#include "device/virtual_device.h"
#include "tools/base/daemon_process.h"
#include "tools/recording/messages.h"

namespace {

// Why a message for the daemon on `root` would reach nobody, or another's daemon.
result check_daemon(const std::string &root) {
    const int pid = daemon_process(root);
    if (pid != 0 && !process_shares_network(pid))
        return {failure::failed,
                "the daemon on " + root +
                    " runs in another network; go there with nsenter --net=/proc/" +
                    std::to_string(pid) + "/ns/net"};
    if (pid != 0)
        return {};
    return {failure::no_daemon,
            "no daemon runs on " + root + "; " +
                (socket_is_taken(DVX_CLIENT_SOCKET)
                     ? another_daemon_hint
                     : "start one with dvxctl --root " + shell_quoted(root) + " device start")};
}

// What the daemon's log says against a message since `offset`, or nothing.
std::string find_rejection(const dvx_message &message, const std::string &root, int64_t offset) {
    const std::string client(message.client, strnlen(message.client, sizeof(message.client)));
    const std::string unknown_client = "Current Device doesn't support " + client + " handlers.";
    const std::string unknown_code =
        ": Code <" + std::to_string(message.code) + "> is not supported.";
    for (const std::string &line : device_read_lines(root + device_daemon_log, &offset))
        for (const std::string &rejection : {unknown_client, unknown_code})
            if (line.ends_with(rejection) ||
                (client == DVX_CLIENT_AUTOMODE && line.ends_with(": Abnormal cmd")))
                return line.substr(line.find(" : ") + sizeof(" : ") - 1);
    return {};
}

}  // namespace

result deliver_message(const dvx_message &message, bool is_text, const std::string &root) {
    result nobody = root.empty() ? result{} : check_daemon(root);
    if (nobody.kind != failure::none)
        return nobody;
    const int64_t log_size = device_file_size(root + device_daemon_log);
    // A note that cannot be taken does not keep the message back.
    if (device_exists(root))
        device_append_note(root + device_messages_log, describe_message(message, is_text));
    const int error = dvx_message_send_and_wait(&message, answer_timeout_ms);
    if (error == -EAGAIN || error == -ETIMEDOUT)
        return {failure::failed, "the daemon does not answer"};
    if (error != 0)
        return {failure::no_daemon,
                std::string("no daemon takes the message: ") + strerror(-error)};
    const std::string rejection =
        device_exists(root) ? find_rejection(message, root, log_size) : "";
    if (rejection.empty())
        return {};
    return {failure::rejected, "the daemon rejects it: " + rejection};
}

int deliver_panel(const std::string &root, bool on) {
    if (device_exists(root))
        device_append_note(root + device_messages_log, on ? "panel on" : "panel off");
    return device_report_panel(root, on);
}

bool socket_is_taken(const std::string &name) {
    return device_read_file("/proc/net/unix").find("@" + name + "\n") != std::string::npos;
}

std::string shell_quoted(const std::string &path) {
    constexpr char plain[] =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._-+,:@%=";
    if (!path.empty() && path.find_first_not_of(plain) == std::string::npos)
        return path;
    std::string quoted = "'";
    for (const char c : path)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}
