// What happens in the life of a simulated daemon, as bytes decide.
#pragma once

#include "device/hardware_conf.h"
#include "simulator/simulator.h"
#include "tests/support/byte_source.h"

// A passage of frames: steady, uneven, or with odd values.
inline void let_frames_pass(byte_source *from) {
    const int32_t usual_us = 1000000 / (20 + static_cast<int32_t>(from->pick(45)));
    const uint8_t unrest = from->next();
    for (int i = from->next() * 6; i >= 0; --i) {
        const int32_t late_us = i * 7919 % (unrest % 3 == 0 ? 20000 : 200);
        const int32_t interval_us = unrest > 128 && i == 50 ? from->number() : usual_us + late_us;
        simulator_advance_ns(interval_us > 0 && interval_us < 1000000 ? interval_us * 1000LL : 0);
        simulator_interval(interval_us);
    }
}

inline void let_something_happen(byte_source *from) {
    constexpr simulated_service states[] = {service_up, service_up, service_down, service_hung};
    switch (from->pick(12)) {
        case 0:
            simulator_panel_report(
                from->any({"panel_power_on = 1\n", "panel_power_on = 0\n", "", "odd"}));
            break;
        case 1:
        case 2:
            let_frames_pass(from);
            break;
        case 3:
        case 4:
            simulator_advance_ns(from->next() * int64_t{157000000});
            break;
        case 5:
            simulator_set_service(from->any({"gbm-client", "merlak-client", "powercontrol-client"}),
                                  from->any(states));
            break;
        case 6: {
            const size_t call = from->pick(device_calls_known.size());
            simulator_set_answer(device_calls_known[call].name, from->any({"0", "0", "12", "-1"}));
            break;
        }
        default:
            simulator_message(something_to_tell(from));
    }
}
