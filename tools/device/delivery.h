// Getting a message to the daemon that is meant, and hearing what became of it.
#pragma once

#include <string>

#include "client/dvx_client.h"
#include "tools/base/exit_status.h"

// What to do where another daemon has the socket's name.
inline constexpr char another_daemon_hint[] =
    "another daemon has the socket; give this one a network of its own with unshare --net "
    "--map-root-user";

// Sends a message and waits until it has had its whole effect; notes it in the messages file of the
// device at `root`, where there is one. With a root, the message goes to the daemon that runs on it
// or to nobody; without one, to whoever serves. Whether it
// arrived and was taken, as far as the root's log says so.
result deliver_message(const dvx_message &message, const std::string &root);

// Reports the panel's power, noted as a message is. 0 or a negative errno value.
int deliver_panel(const std::string &root, bool on);

// Whether a socket of the abstract namespace has that name, in the network that this program is in.
bool socket_is_taken(const std::string &name);

// A path as a shell takes it.
std::string shell_quoted(const std::string &path);
