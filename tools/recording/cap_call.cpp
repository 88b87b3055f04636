#include "tools/recording/cap_call.h"

#include <stdio.h>

namespace {

constexpr char gpu[] = "TMK_GPU";
constexpr double hertz_a_kilohertz = 1000;

}  // namespace

double cap_hertz(const std::string &name, double frequency) {
    return name == gpu ? frequency : frequency * hertz_a_kilohertz;
}

bool cap_call_read(const std::string &call, cap_call *cap) {
    char name[128];
    double frequency;
    if (sscanf(call.c_str(), "set_tmk_freq %127s %lf", name, &frequency) != 2)
        return false;
    *cap = {name, cap_hertz(name, frequency)};
    return true;
}
