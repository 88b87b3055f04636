// The activity table and the scene memory.
#include "fia/scenes.h"

#include <gtest/gtest.h>

#include "core/debug_gate.h"
#include "fia/pilot.h"
#include "tests/support/analyser.h"
#include "tests/support/memory.h"

namespace {

constexpr int32_t steady = 16700;

using Scenes = Analyser;

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

TEST_F(Scenes, CopyOfAMeasurementHasAllThatGoesWithIt) {
    enter("game");
    measure(steady);
    fia_activity *entry = fia_current_entry();
    fia_activity *copy = scene(1);
    EXPECT_EQ(copy->m_active, 1666u);  // the averages start at the middle of the profile
    *copy->rsc_idx = 9;
    entry->jank_thresh = 7;
    entry->jank_period = 30;
    entry->m_active = 1700;
    entry->rsc_max = 2;
    fia_pilot_copy(copy, entry);
    EXPECT_EQ(copy->jank_thresh, 7);
    EXPECT_EQ(copy->jank_period, 30);
    EXPECT_EQ(copy->target_fps, 59);
    EXPECT_EQ(copy->m_active, 1700u);
    EXPECT_EQ(copy->rsc_max, 2);
    EXPECT_EQ(*copy->rsc_idx, 0u);
    entry->rsc_max = copy->rsc_max = 3;
}

TEST_F(Scenes, ThatIsBackEndsTheMeasurement) {
    enter("game");
    measure(steady);
    EXPECT_EQ(scene(1)->valid, 1u);
    EXPECT_EQ(scene(1)->idx, 1);
    enter("game");
    play(300, steady);
    EXPECT_EQ(fia.data->mode, fia_mode_am);
    EXPECT_EQ(fia_current_entry()->pilot->total_num, 299u);  // the last has resumed the scene
    EXPECT_EQ(fia_current_entry()->sm_hits, 0u);
    EXPECT_EQ(fia_current_entry()->sm_rate, 0u);
    EXPECT_EQ(scene(1)->sm_hits, 0u);
    EXPECT_EQ(scene(1)->sm_rate, 100u);
    play(4, 33400);
    for (const int position : {0, 1})
        EXPECT_EQ(scene(position)->pilot->cur_bucket, 10u);
    play(297, steady);
    EXPECT_EQ(scene(1)->jank_period, 30);
}

// Each of more names than there are entries leaves a scene behind, and the sixth of one name.
TEST_F(Scenes, ThatGiveWayAreFreed) {
    int names = 0;
    EXPECT_TRUE(gives_back_what_it_takes([&] {
        enter(std::to_string(names++ % 40).c_str());
        measure(steady);
    }));
    for (int i = 0; i < 6; ++i)
        measure(steady);
    EXPECT_TRUE(gives_back_what_it_takes([&] {
        fia_pilot_start();
        fia.data->restarted = 1;  // no scene takes over
        measure(steady);
    }));
    EXPECT_EQ(fia_current_entry()->scene_cnt, 5);
}

TEST_F(Scenes, NamesAreBytes) {
    EXPECT_EQ(fia_name_hash(""), 0);
    EXPECT_EQ(fia_name_hash(std::string(300, 'a').c_str()), 255 * 'a' % 23);
    EXPECT_EQ(fia_is_activity_in_list(0, "BLANK"), -1);  // an entry not in use has no name
    enter("");
    EXPECT_EQ(infos_logged(" NEW at 0"), 1);
    debug_gate_set(true, 128);
    fia_remove_scene(nullptr);
    fia_remove_scene(fia_current_entry());
    EXPECT_EQ(infos_logged("Nothing to remove"), 2);
}

}  // namespace
