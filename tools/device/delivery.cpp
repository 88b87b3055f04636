#include "tools/device/delivery.h"

#include <string.h>

#include "device/virtual_device.h"
#include "tools/base/files.h"
#include "tools/base/processes.h"
#include "tools/device/daemon_process.h"
#include "tools/recording/messages.h"
#include "tools/recording/timeline.h"

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

// Whether a line of the daemon's log says that it takes no such message.
bool rejects(const record &line, const std::string &client, int32_t code) {
    if (record_is_line(line, log_line::client_unknown))
        return line.values[0] == client;
    for (const log_line row : {log_line::powerhal_code, log_line::dgpc_code, log_line::tmr_code,
                               log_line::mediahal_code, log_line::vrhal_code})
        if (record_is_line(line, row))
            return record_integer(line, 0) == code;
    return record_is_line(line, log_line::automode_abnormal) && client == DVX_CLIENT_AUTOMODE;
}

// What the daemon's log says against a message since `offset`, or nothing.
std::string find_rejection(const dvx_message &message, const std::string &root, int64_t offset) {
    const std::string client(message.client, strnlen(message.client, sizeof(message.client)));
    for (const std::string &line : read_lines(root + device_daemon_log, &offset)) {
        const record came = parse_daemon_line(line, 0);
        if (rejects(came, client, message.code))
            return came.text;
    }
    return {};
}

}  // namespace

result deliver_message(const dvx_message &message, const std::string &root) {
    result nobody = root.empty() ? result{} : check_daemon(root);
    if (nobody.kind != failure::none)
        return nobody;
    const int64_t log_size = file_size(root + device_daemon_log);
    // A note that cannot be taken does not keep the message back.
    if (device_exists(root))
        device_append_note(root + device_messages_log, describe_message(message));
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
    return read_file("/proc/net/unix").find("@" + name + "\n") != std::string::npos;
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
