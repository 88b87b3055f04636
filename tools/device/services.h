// Stand-ins for the three services that the daemon talks to: they take its messages and write down
// in words what each says.
#pragma once

#include <string>

// Serves the three sockets for ever, each message a line of the device's services file and, with
// `print`, of standard output. Returns only when none of the names is to be had: 1.
int serve_services(const std::string &root, bool print);
