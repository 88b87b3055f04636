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
        take_up(make_time_happening(interval_us > 0 && interval_us < 1000000 ? interval_us * 1000LL
                                                                             : 0));
        take_up(make_interval_happening(interval_us));
    }
}

inline void let_something_happen(byte_source *from) {
    constexpr service_state states[] = {service_state::up, service_state::up, service_state::down,
                                        service_state::hung};
    happening given;
    switch (from->pick(12)) {
        case 0:
            given.kind = happening_kind::panel;
            given.value = from->any({"panel_power_on = 1\n", "panel_power_on = 0\n", "", "odd"});
            take_up(given);
            break;
        case 1:
        case 2:
            let_frames_pass(from);
            break;
        case 3:
        case 4:
            take_up(make_time_happening(from->next() * int64_t{157000000}));
            break;
        case 5:
            given.kind = happening_kind::service;
            given.state = from->any(states);
            given.name = from->any({"gbm-client", "merlak-client", "powercontrol-client"});
            take_up(given);
            break;
        case 6:
            given.kind = happening_kind::answer;
            given.name = device_calls_known[from->pick(device_calls_known.size())].name;
            given.value = from->any({"0", "0", "12", "-1"});
            take_up(given);
            break;
        default:
            take_up(make_message_happening(something_to_tell(from)));
    }
}
