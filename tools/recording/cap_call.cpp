#include "tools/recording/cap_call.h"

namespace {

constexpr char gpu[] = "TMK_GPU";
constexpr double hertz_a_kilohertz = 1000;

}  // namespace

double cap_hertz(const std::string &name, double frequency) {
    return name == gpu ? frequency : frequency * hertz_a_kilohertz;
}

bool cap_call_read(const record &call, cap_call *cap) {
    if (!record_is_call(call, "set_tmk_freq") || call.values.size() < 2)
        return false;
    *cap = {call.values[0], cap_hertz(call.values[0], record_number(call, 1))};
    return true;
}
