// dvxctl's look at a device: what the daemon would find there, and what is off without it.
#pragma once

#include <string>
#include <vector>

enum verdict { verdict_good, verdict_off, verdict_unknown };

struct finding {
    std::string subject;  // "library", "node", "property", "socket", "service", "rights", "panel"
    std::string name;
    verdict found;
    std::string said;     // what is there
    std::string without;  // what is off; only where something is
};

struct doctor_options {
    std::string root;     // "/" on a phone
    double panel_hz = 0;  // what somebody says of the panel; 0: the device is asked
    double wait_s = 0;    // how long an attribute may take to signal; 0: it is not waited for
};

// Looks at everything and changes nothing. The findings in the order of the daemon's start.
std::vector<finding> doctor_look(const doctor_options &options);

// dvxctl's command: 0, 1 when something is off, 2 without a device.
int doctor_command(doctor_options options, bool json);
