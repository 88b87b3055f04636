// The activity table and the scene memory.
#include "fia/scenes.h"

#include <gtest/gtest.h>

#include "core/debug_gate.h"
#include "tests/support/analyser.h"
#include "tests/support/fake_clock.h"

namespace {

constexpr int32_t steady = 16700;
constexpr int report_length = 301;

struct Scenes : Analyser {
    // Measures the game in front at this interval and stores the scene.
    void store(int32_t interval_us) {
        const int before = fia.data->scene_total;
        fia.data->restarted = 1;  // no shortcut
        play(901, interval_us);
        advance_clock_ms(10);
        ASSERT_EQ(fia.data->scene_total, before + 1);
    }
};

TEST_F(Scenes, KnownSceneResumesWithItsLevels) {
    enter("game");
    measure(steady);
    play(3 * report_length, steady);
    ASSERT_EQ(now(), (levels{1, 1, 1}));
    leave();
    EXPECT_EQ(now(), (levels{0, 0, 0}));
    EXPECT_EQ(infos_logged("FIA Suspended!"), 1);
    device_calls(&device);

    debug_gate_set(true, 128);
    enter("game");
    EXPECT_EQ(infos_logged("game name_sum: 410 hash: 19"), 1);
    EXPECT_EQ(infos_logged("game DETECT at 19"), 1);
    play(299, steady);
    EXPECT_EQ(fia.data->mode, fia_mode_pm);
    play(1, steady);
    EXPECT_EQ(infos_logged("SM at idx:1 Start AM"), 1);
    // One step up from where it was left.
    EXPECT_EQ(now(), (levels{0, 1, 1}));
    EXPECT_EQ(infos_logged("idx:1, name:game, ts:1000000, rsc1:0, rsc2:1, rsc3:1, hit_rate:100"),
              1);
    EXPECT_EQ(scene(1)->sm_rate, 100u);
}

TEST_F(Scenes, PoorMatchIsNoneAndEachCheckCountsAnew) {
    enter("game");
    measure(steady);
    leave();
    enter("game");
    fia.data->pm_retry = 7;
    play(100, 33400);
    play(200, steady);  // two thirds fit: less than the profile's 85
    EXPECT_EQ(scene(1)->sm_rate, 65u);
    EXPECT_EQ(fia.data->mode, fia_mode_pm);
    play(300, steady);
    EXPECT_EQ(infos_logged("SM at idx:1 Start AM"), 1);
    EXPECT_EQ(scene(1)->sm_rate, 100u);
    leave();
    enter("game");
    EXPECT_EQ(fia.data->pm_retry, 0);
}

TEST_F(Scenes, BestMatchWinsAndTheFirstOfEquals) {
    enter("game");
    store(steady);
    for (const int32_t interval : {33400, 16700}) {
        leave();
        enter("game");
        store(interval);
    }
    ASSERT_EQ(fia_current_entry()->scene_cnt, 3);
    leave();
    enter("game");
    fia.data->restarted = 0;
    play(300, 33400);
    EXPECT_EQ(infos_logged("SM at idx:2 Start AM"), 1);
    leave();
    enter("game");
    play(300, steady);
    EXPECT_EQ(infos_logged("SM at idx:1 Start AM"), 1);  // the third is its equal
    EXPECT_EQ(infos_logged("SM at idx:3 Start AM"), 0);
}

TEST_F(Scenes, SixthSceneReplacesTheOneUsedLongestAgo) {
    enter("game");
    for (int i = 0; i < 5; ++i) {
        store(16700 + 4000 * i);
        leave();
        enter("game");
    }
    fia.data->restarted = 0;
    play(300, steady);  // selects the first, which is the latest used then
    ASSERT_EQ(infos_logged("SM at idx:1 Start AM"), 1);
    leave();
    enter("game");
    fia.data->restarted = 1;
    play(901, 50000);
    EXPECT_EQ(fia_current_entry()->scene_cnt, 5);
    EXPECT_EQ(fia.data->scene_total, 5);
    // The second is gone, and the others have moved up.
    const uint32_t most_sampled[] = {0, 6, 8, 10, 13};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(scene(i + 1)->idx, i + 1);
        EXPECT_EQ(scene(i + 1)->pilot->msi, most_sampled[i]) << i;
        EXPECT_STREQ(scene(i + 1)->name, "game");
    }
    EXPECT_EQ(scene(6), nullptr);
}

TEST_F(Scenes, SlotsAreFoundSharedAndReused) {
    debug_gate_set(true, 128);
    // Twenty-three names of one sum: one slot by hash, the others where there is room.
    for (int i = 0; i < 23; ++i) {
        const std::string name = {static_cast<char>('a' + i), static_cast<char>('z' - i)};
        enter(name.c_str());
        EXPECT_TRUE(fia_current_entry()->name == name);
    }
    enter("by");
    EXPECT_EQ(count_logged_like("by DETECT at "), 1);
    enter("az");
    measure(steady);
    EXPECT_EQ(fia.data->scene_total, 1);

    const int32_t hash = fia_name_hash("az");
    EXPECT_EQ(fia_is_activity_in_list(hash, "az"), hash);
    EXPECT_EQ(fia_is_activity_in_list((hash + 5) % 23, "az"), hash);
    EXPECT_EQ(fia_is_activity_in_list(23, "az"), -1);
    EXPECT_EQ(infos_logged("Invalid hash: 23"), 1);

    // A twenty-fourth takes entry 0, whoever has it, with its scenes.
    const std::string first = fia.activities[0].name;
    enter(first.c_str());
    measure(steady);
    enter("newcomer");
    EXPECT_EQ(infos_logged("newcomer NEW at 0"), 1);
    EXPECT_EQ(infos_logged(first + " scene removed!"), 1);
    EXPECT_EQ(fia_current_entry()->scene_cnt, 0);
    EXPECT_EQ(fia_is_activity_in_list(0, first.c_str()), -1);
    EXPECT_EQ(fia.data->scene_total, first == "az" ? 0 : 1);
}

TEST_F(Scenes, NamesAreBytes) {
    EXPECT_EQ(fia_name_hash(""), 0);
    EXPECT_EQ(fia_name_hash("\xff\xff"), 510 % 23);
    EXPECT_EQ(fia_name_hash(std::string(300, 'a').c_str()), 255 * 'a' % 23);
    EXPECT_EQ(fia_is_activity_in_list(0, "BLANK"), -1);  // an entry not in use has no name
    enter("%n%d");
    EXPECT_EQ(infos_logged("%n%d NEW at " + std::to_string(fia_name_hash("%n%d"))), 1);
    enter("");
    EXPECT_EQ(infos_logged(" NEW at 0"), 1);
    debug_gate_set(true, 128);
    fia_remove_scene(nullptr);
    fia_remove_scene(fia_current_entry());
    EXPECT_EQ(infos_logged("Nothing to remove"), 2);
}

}  // namespace
