// Figures under the decision, and what only other tunables than the built-in ones show.
#include <gtest/gtest.h>

#include "core/debug_gate.h"
#include "fia/pilot.h"
#include "fia/scenes.h"
#include "fia/statistics.h"
#include "simulator/allocation.h"
#include "tests/support/analyser.h"

namespace {

constexpr int32_t steady = 16700;  // 1670 units: bucket 0
constexpr int report_length = 301;

struct Decision : Analyser {
    // In AM on a steady profile of 60 frames per second.
    void start_active() {
        enter("game");
        measure(steady);
        ASSERT_EQ(infos_logged("PM Complete!\n"), 1);
        device_calls(&device);
        clear_log();
    }
};

TEST(Buckets, HaveTheirEdges) {
    const std::pair<uint64_t, uint32_t> edges[] = {
        {0, 0},      {1000, 0},   {1665, 0},    {1666, 0},    {1724, 0},       {1725, 1},
        {25000, 18}, {25001, 19}, {100000, 19}, {100001, 20}, {UINT64_MAX, 20}};
    for (const auto &[mean, bucket] : edges)
        EXPECT_EQ(fia_bucket(mean), bucket) << mean;
    fia_pilot_elem elems[fia_bucket_count];
    fia_pilot_init_elems(elems);
    EXPECT_EQ(elems[0].m_lower, 1666u);
    EXPECT_EQ(elems[0].m_upper, 1754u);
    EXPECT_EQ(elems[19].m_lower, 33333u);
    EXPECT_EQ(elems[19].m_upper, 100000u);
    EXPECT_EQ(elems[7].v_lower, UINT64_MAX);
}

TEST(Statistics, CoverFourIntervalsAndForgetTheBadOnes) {
    fia_stats stats;
    fia_stats_init(&stats);
    EXPECT_EQ(stats.sum, 6664u);
    EXPECT_EQ(stats.sum_sq, 11102224u);
    fia_stats_add(&stats, 33333);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(stats.mean, 2082u);
        EXPECT_EQ(stats.var, 524165u);
        fia_stats_add(&stats, 16666);
    }
    EXPECT_EQ(stats.mean, 1666u);
    EXPECT_EQ(stats.var, 0u);
    for (const int32_t bad : {-1, INT32_MIN, INT32_MAX, 0}) {
        fia_stats_add(&stats, bad);
        for (int i = 0; i < 4; ++i)
            fia_stats_add(&stats, 16666);
        EXPECT_EQ(stats.mean, 1666u);
        EXPECT_EQ(stats.var, 0u);
        EXPECT_EQ(stats.sum_sq, 11102224u);
    }
    stats.idx = 4;
    EXPECT_EQ(fia_stats_add(&stats, 1), -22);
    EXPECT_EQ(errors_logged("interval index is out of bound: 4"), 1);
}

TEST_F(Decision, MiddleBandIsReachedWithOtherTunables) {
    start_active();
    fia_tunables wide = *fia.tunables;
    wide.hold_margin_percent = 40;
    fia.tunables = &wide;
    play(3 * report_length, steady);
    clear_log();
    // Hit rates between 60 and 85 percent of the profile's: one late frame in twelve.
    const auto middling_report = [] {
        fia.data->cur->jank_thresh = 1000;  // janks are another test's
        for (int i = 0; i < report_length; ++i)
            notify_fia_interval_changed(i % 12 == 0 ? 17500 : steady);
    };
    middling_report();
    middling_report();
    EXPECT_EQ(fia.data->below_cnt, 2);
    EXPECT_EQ(fia.data->low_cnt, 0);
    EXPECT_EQ(now(), (levels{0, 1, 0}));
    middling_report();
    EXPECT_EQ(infos_logged("PM is required! PM Start"), 1);
    EXPECT_EQ(fia.data->mode, fia_mode_pm);
    fia.tunables = fia_tunables_config_init();
}

TEST_F(Decision, MeasurementWithoutASampleHasNoTarget) {
    leave();
    play(4, 2000000);
    enter("game");
    measure(2000000);
    EXPECT_EQ(infos_logged("PM Restart! Retry : 1"), 1);
    EXPECT_EQ(fia_current_entry()->target_fps, -1);
}

TEST_F(Decision, SceneMayBeKnownByOneInterval) {
    start_active();
    fia_tunables quick = *fia.tunables;
    quick.period_divisor = 300;
    fia.tunables = &quick;
    enter("game");
    EXPECT_EQ(fia_is_scene_changed(), 0);  // not while it is measured
    play(1, steady);
    EXPECT_EQ(infos_logged("SM at idx:1 Start AM"), 1);
    fia.tunables = fia_tunables_config_init();
}

TEST_F(Decision, PeriodsOfZeroNeverMatch) {
    fia_tunables none = *fia.tunables;
    none.period_divisor = 0;
    fia.tunables = &none;
    enter("game");
    play(5, steady);
    EXPECT_EQ(infos_logged("PM Restart! Retry : 5"), 1);  // nothing was ever accumulated
    none.period_divisor = 31;
    play(30, steady);
    EXPECT_EQ(infos_logged("PM Complete!\n"), 1);
    fia.tunables = fia_tunables_config_init();
}

}  // namespace
