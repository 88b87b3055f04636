#include "tools/recording/happening.h"

#include "tools/recording/messages.h"

namespace {

constexpr char panel_on[] = "panel_power_on = 1\n";
constexpr char panel_off[] = "panel_power_on = 0\n";

}  // namespace

happening make_time_happening(int64_t duration_ns) {
    happening time;
    time.kind = happening_kind::time;
    time.time_ns = duration_ns;
    return time;
}

happening make_interval_happening(int32_t interval_us, int64_t time_ns) {
    happening taken;
    taken.kind = happening_kind::interval;
    taken.time_ns = time_ns;
    taken.interval_us = interval_us;
    return taken;
}

happening make_message_happening(const dvx_message &message, int64_t time_ns) {
    happening taken;
    taken.kind = happening_kind::message;
    taken.time_ns = time_ns;
    taken.message = std::make_shared<const dvx_message>(message);
    return taken;
}

happening make_panel_happening(bool on, int64_t time_ns) {
    happening taken;
    taken.kind = happening_kind::panel;
    taken.time_ns = time_ns;
    taken.value = on ? panel_on : panel_off;
    return taken;
}

bool panel_is_on(const happening &panel) {
    return panel.value == panel_on;
}

std::string describe_happening(const happening &taken) {
    switch (taken.kind) {
        case happening_kind::load:
            return "before main";
        case happening_kind::start:
            return "start-up";
        case happening_kind::analyser:
            return "the analyser's start";
        case happening_kind::message:
            return describe_message(*taken.message);
        case happening_kind::interval:
            if (taken.interval_us)
                return "interval of " + std::to_string(*taken.interval_us) + " us";
            [[fallthrough]];
        case happening_kind::panel:
            return "report '" + taken.value + "'";
        case happening_kind::timers:
            return "timers";
        case happening_kind::thermal:
            return "a poll of the thermal engine";
        default:
            return "";
    }
}
