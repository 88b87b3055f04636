// Stand-ins for the three services that the daemon talks to: they take its messages and write down
// in words what each says.
#pragma once

#include <string>

#include "ipc/gbm_client.h"
#include "ipc/merlak_client.h"
#include "ipc/powercontrol_client.h"

std::string describe_gbm_message(const gbm_message &message);
std::string describe_merlak_message(const merlak_message &message);
std::string describe_powercontrol_message(const powercontrol_message &message);

// Serves the three sockets for ever, each message a line of the device's services file and, with
// `print`, of standard output. Returns only when none of the names is to be had: 1.
int serve_services(const std::string &root, bool print);
