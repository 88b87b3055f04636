// From reports to app modes.
#include "context/running_app.h"

#include <gtest/gtest.h>

#include "context/app_context.h"
#include "core/event_manager.h"
#include "tests/support/allocation.h"
#include "tests/support/log_sink.h"
#include "tests/support/recorder.h"

namespace {

using ids = std::vector<int>;

struct RunningApp : testing::Test {
    void SetUp() override {
        ASSERT_EQ(init_event_manager(), 0);
        ASSERT_EQ(init_el(), 0);
        record_events();
    }

    // The mode events that follow from these reports.
    ids report(std::initializer_list<int> events) {
        take_raised();
        for (const int id : events)
            notify_event(static_cast<event_id>(id));
        ids raised = take_raised();
        std::erase_if(raised, [](int id) { return id < 42 || id > 59; });
        return raised;
    }
};

TEST_F(RunningApp, FirstEvaluationLeavesTheDefaultGame) {
    EXPECT_EQ(report({1}), (ids{49, 42}));
    EXPECT_EQ(report({1}), ids{42});
    EXPECT_EQ(infos_logged("System FW:0 IC:0 SO:0 GT:0 CAPP:-1 APP:0\n"), 2);
}

TEST_F(RunningApp, OneCategoryIsAModeTwoAreNone) {
    EXPECT_EQ(report({0}), ids{43});
    EXPECT_EQ(report({0}), ids{43});
    EXPECT_EQ(report({4}), (ids{49, 42}));
    EXPECT_EQ(infos_logged("System FW:0 IC:0 SO:0 GT:0 CAPP:0 APP:9\n"), 1);
    EXPECT_EQ(report({1}), (ids{48, 45}));
    const struct {
        int on, off;
        ids entered, left;
    } rest[] = {{6, 7, {46}, {52, 42}},
                {2, 3, {47}, {53, 42}},
                {96, 97, {58}, {59, 42}},
                {90, 91, {47}, {53, 42}},
                {94, 95, {46}, {52, 42}}};
    report({5});
    for (const auto &row : rest) {
        ids entered = report({row.on});
        EXPECT_EQ(entered.front(), 48);
        EXPECT_EQ(ids(entered.begin() + 1, entered.end()), row.entered);
        EXPECT_EQ(report({row.off}), row.left);
    }
}

TEST_F(RunningApp, CategoryStaysUntilBothSourcesLetGo) {
    report({4, 92});
    EXPECT_EQ(report({5}), ids{45});
    EXPECT_EQ(report({93}), (ids{51, 42}));
    report({94, 95, 6});
    EXPECT_EQ(report({95}), ids{46});
}

TEST_F(RunningApp, GameMovesBetweenTunerAndDefault) {
    report({0});
    EXPECT_EQ(report({30}), (ids{49, 44}));
    EXPECT_EQ(report({0}), ids{44});
    EXPECT_EQ(report({31}), (ids{50, 43}));
    EXPECT_EQ(report({31}), ids{43});
    report({30});
    EXPECT_EQ(report({1}), (ids{50, 42}));
    EXPECT_EQ(report({0}), (ids{48, 44}));  // still under the tuner
    EXPECT_EQ(infos_logged("System FW:0 IC:0 SO:0 GT:1 CAPP:-1 APP:2\n"), 1);
}

TEST_F(RunningApp, HomeWithAndWithoutLiveWallpaper) {
    set_home_activity_name("com.example.home");
    EXPECT_EQ(report({8}), (ids{49, 54}));
    EXPECT_EQ(report({26}), (ids{54, 56}));
    EXPECT_EQ(report({9}), (ids{54, 56}));
    EXPECT_EQ(report({27}), (ids{55, 57, 42}));
    for (const char *settings :
         {"com.android.settings.X", "HomeSettingsPrefActivity", "a.WallpaperListActivity",
          "livepicker.LiveWallpaperActivity", "wallpaperpicker.WallpaperChooserActivity"}) {
        set_home_activity_name("com.example.home");
        report({8, 26});
        set_home_activity_name(settings);
        EXPECT_EQ(report({8}), (ids{54, 56})) << settings;
        EXPECT_EQ(report({26}), (ids{55, 57, 42})) << settings;
    }
    set_home_activity_name("com.android.Settings");  // case counts
    EXPECT_EQ(report({8}), (ids{48, 54}));
}

TEST_F(RunningApp, ScreenAndCallHideTheApp) {
    report({0});
    EXPECT_EQ(report({80}), (ids{49, 42}));
    EXPECT_EQ(report({81}), (ids{48, 43}));
    EXPECT_EQ(report({18}), (ids{49, 42}));
    EXPECT_EQ(report({80}), ids{42});
    EXPECT_EQ(report({19}), ids{42});
    EXPECT_EQ(report({81}), (ids{48, 43}));
}

TEST_F(RunningApp, MismatchedWindowFloats) {
    report({0});
    set_current_activity_name("com.example.game");
    set_current_window_name("com.example.chat");
    EXPECT_EQ(report({12}), (ids{49, 42}));
    EXPECT_EQ(report({18}), ids{42});
    EXPECT_EQ(report({19}), ids{42});  // the window still does not match
    set_current_window_name("com.example.game/Main");
    take_raised();
    notify_event(EV_WINDOW_CHANGED);
    EXPECT_EQ(take_raised(), (ids{48, 43, 41, 12}));  // the recorder hears last of each
    // The other way round: the activity must contain the window's name.
    set_full_activity_name("com.example.game/Main");
    EXPECT_EQ(report({11}), ids{43});
    set_full_activity_name("com.example.game");
    EXPECT_EQ(report({11}), (ids{49, 42}));
}

TEST(RunningAppStart, SaysThatItHasNoMemory) {
    ASSERT_EQ(init_event_manager(), 0);
    fail_allocation_after(0);
    EXPECT_LT(init_el(), 0);
    EXPECT_EQ(errors_logged("Failed to initialize event_listener"), 1);
    notify_event(EV_GAME_APP_RESUMED);  // nothing was registered
}

}  // namespace
