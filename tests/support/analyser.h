// The frame interval analyser on a virtual device, stepped by hand: events, intervals, and what
// reached the library.
#pragma once

#include <gtest/gtest.h>

#include "context/app_context.h"
#include "core/event_manager.h"
#include "fia/clock_manager.h"
#include "fia/interval_decision.h"
#include "fia/lifecycle.h"
#include "fia/records.h"
#include "tests/support/log_sink.h"
#include "tests/support/test_device.h"

using calls = std::vector<std::string>;
using levels = std::vector<uint32_t>;

struct Analyser : testing::Test {
    test_device device;

    void SetUp() override {
        ASSERT_EQ(init_event_manager(), 0);
        ASSERT_EQ(init_fia_clock_manager(), 0);
        ASSERT_EQ(init_fia(), 0);
        ASSERT_EQ(fia_start_analyser(), 0);
        device_calls(&device);
        clear_log();
    }

    // A game's window comes to the front; the one before is left.
    static void enter(const char *window) {
        leave();
        set_current_window_name(window);
        notify_event(EV_MODE_GAME_DEFAULT);
    }

    static void leave() { notify_event(EV_MODE_GAME_DEFAULT_EXIT); }

    static void play(int count, int32_t interval_us) {
        for (int i = 0; i < count; ++i)
            notify_fia_interval_changed(interval_us);
    }

    // A steady measurement to its end: bucket of the interval is the whole profile.
    static void measure(int32_t interval_us) { play(901, interval_us); }

    static levels now() {
        levels present(3);
        fia_clock_get_freq(3, present.data());
        return present;
    }

    static fia_activity *scene(int position) {
        fia_activity *record = fia_current_entry();
        for (int i = 0; i < position && record != nullptr; ++i)
            record = record->next;
        return record;
    }
};
