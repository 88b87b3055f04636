// dvxctl's look at a device: what the daemon would find there, and what is off without it.
#pragma once

#include <string>

struct doctor_options {
    std::string root;     // "/" on a phone
    double panel_hz = 0;  // what somebody says of the panel; 0: the device is asked
    double wait_s = 0;    // how long an attribute may take to signal; 0: it is not waited for
};

// dvxctl's command, which changes nothing: 0, 1 when something is off, 2 without a device.
int doctor_command(doctor_options options, bool json);
