// Sequences of messages, panel reports and interval reports.
#include <string>

#include "ipc/client_server.h"
#include "ipc/kernel_event_monitor.h"
#include "tests/fuzz/live_daemon.h"

namespace {

constexpr const char *clients[] = {"powerhal", "powerhal", "powerhal",     "dgpc",
                                   "mediahal", "automode", "lowpowermode", "vrhal"};
constexpr int32_t codes[] = {-1, -1, -1, 16, 18, 0, 0, 21};  // -1: the next byte's
constexpr const char *windows[] = {"com.android.chrome", "com.kakao.talk", "com.example/.Game",
                                   "com.example"};

struct input {
    const uint8_t *data;
    size_t left;

    uint8_t next() {
        if (left == 0)
            return 0;
        --left;
        return *data++;
    }
};

void tell(input *from, uint8_t choice) {
    dvx_message message;
    const int32_t code = codes[choice] >= 0 ? codes[choice] : from->next() % 17;
    dvx_message_init(&message, clients[choice], code);
    if (code >= DVX_CODE_WINDOW && code <= DVX_CODE_ACTIVITY)
        dvx_message_set_text(&message, windows[from->next() % 4]);
    else
        for (int i = 0; i < 4; ++i)
            message.payload.values[i] = static_cast<int8_t>(from->next());
    dispatch_message(&message);
}

void play(input *from) {
    const int32_t interval_us = from->next() * 256 + from->next();
    const std::string report = std::to_string(interval_us) + "\n";
    for (int i = from->next() * 4; i >= 0; --i)
        cb_notify_fbcn_interval(report.c_str());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    start_live_daemon();
    input from = {data, size};
    while (from.left > 0) {
        const uint8_t choice = from.next();
        if (choice % 4 == 1)
            cb_notify_panel_power_states(choice % 8 == 1 ? "panel_power_on = 1\n" : "off");
        else if (choice % 4 == 2)
            play(&from);
        else
            tell(&from, choice / 4 % 8);
    }
    return 0;
}
