// What intervals lead to: measurement, active mode, reports, bands.
#include <gtest/gtest.h>

#include "core/debug_gate.h"
#include "fia/pilot.h"
#include "fia/scenes.h"
#include "fia/statistics.h"
#include "tests/support/allocation.h"
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

TEST_F(Decision, SteadyGameIsMeasuredOnceAndLoweredReportByReport) {
    enter("game");
    play(900, steady);
    EXPECT_EQ(infos_logged("PM Complete!\n"), 0);
    play(1, steady);
    EXPECT_EQ(infos_logged("PM Complete!\n"), 1);
    EXPECT_EQ(infos_logged("H=100 MSI=0"), 1);
    // The first four means lie between the initial samples and the game's.
    EXPECT_EQ(infos_logged("|   60  |     1   |  900  |        0  |        4  |\n"), 1);
    EXPECT_EQ(fia.data->cur->target_fps, 59);
    EXPECT_EQ(count_logged_like("====="), 3);

    device_calls(&device);
    const char *lowered[] = {"CLUSTER0 1612800", "GPU 596000000",  "CLUSTER1 1612800",
                             "CLUSTER0 1420800", "GPU 414000000",  "CLUSTER1 1363200",
                             "CLUSTER0 979200",  "CLUSTER1 902400"};
    for (const char *call : lowered) {
        play(report_length - 1, steady);
        EXPECT_EQ(device_calls(&device), calls{});
        play(1, steady);
        EXPECT_EQ(device_calls(&device), calls{std::string("set_tmk_freq TMK_") + call});
    }
    // The CPU budget of 6 is used up; a refused step changes nothing.
    play(2 * report_length, steady);
    EXPECT_EQ(device_calls(&device), calls{});
    EXPECT_EQ(infos_logged("100% (301/301) H"), 10);
}

TEST_F(Decision, ProfileOfTwoRatesIsSettledToTheLetter) {
    enter("two rates");
    for (int i = 0; i < 901; ++i)
        notify_fia_interval_changed(i < 450   ? 16700 + i % 3 * 100
                                    : i < 890 ? 25000 - i % 2 * 60
                                              : 60000);
    const char *lines[] = {"|   60  |     1   |  450  |       50  |     1763  |\n",
                           "|   54  |     0   |    1  |        0  |   126125  |\n",
                           "|   48  |     0   |    1  |        0  |   164853  |\n",
                           "|   45  |     0   |    1  |        0  |   122418  |\n",
                           "|   42  |     1   |  437  |        9  |        9  |\n",
                           "|   30  |     0   |    1  |        0  |  2302134  |\n",
                           "|   24  |     0   |    1  |        0  |  3072005  |\n",
                           "|   21  |     0   |    1  |        0  |  2309880  |\n",
                           "|   18  |     0   |    7  |        0  |        0  |\n",
                           "vmax=3072005, vmin=0, mmax=2380, mmin=1666, v_thresh=433412",
                           "H=98 MSI=0"};
    for (const char *line : lines)
        EXPECT_EQ(infos_logged(line), 1) << line;
    EXPECT_EQ(fia.data->cur->target_fps, 59);
}

TEST_F(Decision, AveragesCoverFivePeriodsOfSixty) {
    start_active();
    EXPECT_EQ(fia.data->cur->m_active, 1666u);
    EXPECT_EQ(fia.data->cur->v_active, 2u);
    play(59, 16800);
    EXPECT_EQ(fia.data->cur->m_active, 1666u);
    play(1, 16800);
    EXPECT_EQ(fia.data->cur->m_active, (4 * 1666u + 1680u) / 5);
    EXPECT_EQ(fia.data->cur->v_active, 4 * 2u / 5);
    play(60, 16800);
    EXPECT_EQ(fia.data->cur->m_active, (3 * 1666u + 2 * 1680u) / 5);
}

TEST_F(Decision, ThresholdsFollowTheMeasuredProfileOfTheActivity) {
    start_active();
    fia_current_entry()->pilot->h = 80;  // the scene in use has 100
    play(report_length, steady);
    EXPECT_EQ(fia.data->hold_thresh, 68);
    EXPECT_EQ(fia.data->low_thresh, 72);
    EXPECT_EQ(fia.data->cur->jank_thresh, 10);
    fia_current_entry()->pilot->h = 110;
    play(report_length, steady);
    EXPECT_EQ(fia.data->hold_thresh, 93);
    EXPECT_EQ(fia.data->cur->jank_thresh, 5);  // 3, but never less than 5
    EXPECT_EQ(fia.data->low_cnt, 0);
}

TEST_F(Decision, IntervalsWithoutABucketAreLeftOut) {
    enter("game");
    play(400, steady);
    const int32_t bad[] = {-1, 2000000, INT32_MIN, INT32_MAX};
    for (const int32_t interval : bad)
        play(1, interval);
    play(497, steady);
    EXPECT_EQ(infos_logged("H=100 MSI=0"), 1);
    // Seven means had one of the four among their samples.
    EXPECT_EQ(fia.data->cur->pilot->total_num, 893u);
    const uint32_t hits = fia.data->hit_cnt;
    play(4, -1);
    EXPECT_EQ(fia.data->hit_cnt, hits);
    EXPECT_EQ(fia.data->cur->jank, 0);
    play(4, steady);
    EXPECT_EQ(fia.data->hit_cnt, hits + 1);
    // Nothing but intervals of that kind: no measurement.
    play(4, 2000000);
    enter("other");
    play(901, 2000000);
    EXPECT_EQ(infos_logged("HR is under 75 > 0"), 1);
    EXPECT_EQ(infos_logged("PM Restart! Retry : 1"), 1);
}

TEST_F(Decision, TooSlowAGameIsGivenUpAndNotLowered) {
    enter("slow");
    play(11 * 901, 200000);
    EXPECT_EQ(infos_logged("too high interval at idx:18"), 11);
    EXPECT_EQ(infos_logged("PM Restart! Retry : 10"), 1);
    EXPECT_EQ(infos_logged("PM Over:10"), 1);
    EXPECT_EQ(fia.data->mode, fia_mode_am);
    EXPECT_EQ(fia.data->cur, fia_current_entry());
    EXPECT_EQ(scene(1), nullptr);
    device_calls(&device);
    // Zero hits are all of a profile of zero, but nothing is lowered; the mean has left the
    // profile.
    play(report_length, 200000);
    EXPECT_EQ(infos_logged("0% (0/301) H"), 1);
    EXPECT_EQ(infos_logged("SC1! PM Start"), 1);
    EXPECT_EQ(fia.data->pm_retry, 0);
    EXPECT_EQ(device_calls_of(&device, "set_tmk_freq"),
              (calls{"set_tmk_freq TMK_CLUSTER1 2803200", "set_tmk_freq TMK_CLUSTER0 1766400",
                     "set_tmk_freq TMK_GPU 710000000"}));
}

TEST_F(Decision, UnsteadyGameIsMeasuredAgain) {
    // Phases of four intervals: means spread over the buckets, with variances beyond the threshold.
    enter("restless");
    for (int i = 0; i < 901; ++i)
        notify_fia_interval_changed(i % 300 < 140 ? steady : (i * 7919) % 50000 + 17000);
    EXPECT_EQ(infos_logged("PM Complete!\n"), 0);
    EXPECT_EQ(infos_logged("PM Restart! Retry : 1"), 1);
    EXPECT_EQ(fia.data->mode, fia_mode_pm);
    EXPECT_LT(fia_current_entry()->pilot->h, 75u);
}

TEST_F(Decision, JankRaisesOnceAPeriodAndOnlyLoweredCaps) {
    start_active();
    debug_gate_set(true, 128);
    play(3 * report_length, steady);
    EXPECT_EQ(now(), (levels{1, 1, 1}));
    EXPECT_EQ(fia.data->cur->jank_thresh, 5);
    device_calls(&device);
    // A late frame stands in four means: four janks; the sixth jank of a period raises.
    play(1, 21000);
    play(4, steady);
    EXPECT_EQ(infos_logged("Successive Jank: 4"), 1);
    EXPECT_EQ(device_calls(&device), calls{});
    play(1, 21000);
    play(4, steady);
    EXPECT_EQ(infos_logged("J: 6, JT: 5"), 1);
    EXPECT_EQ(device_calls(&device), calls{"set_tmk_freq TMK_CLUSTER1 2803200"});
    play(2, 21000);
    play(18, steady);  // the jank period of 30 ends
    EXPECT_EQ(device_calls(&device), calls{});
    EXPECT_EQ(fia.data->cur->jank, 0);

    play(report_length - 30, steady);
    EXPECT_EQ(infos_logged("4% (13/301) Jank!"), 1);
    play(report_length, steady);
    EXPECT_EQ(infos_logged("0% (0/301) Jank!"), 1 + 3);

    // A mean of 0 is no jank, whatever the profile says of its variance.
    fia.data->cur->pilot->elems[0].v_lower = 1;
    play(4, 0);
    const int janks = fia.data->cur->jank;
    play(2, 0);
    EXPECT_EQ(fia.data->cur->jank, janks);
    fia.data->cur->pilot->elems[0].v_lower = 0;
    play(60, steady);

    fia_clock_clear_freq();
    fia.data->cur->jank = 0;
    device_calls(&device);
    for (int i = 0; i < 3; ++i) {
        play(1, 21000);
        play(4, steady);
    }
    EXPECT_EQ(fia.data->cur->jank, 12);
    EXPECT_EQ(device_calls(&device), calls{});
}

TEST_F(Decision, FrameRateFarBelowTheUsualRaisesAfterFiveFrames) {
    start_active();
    play(report_length, steady);
    EXPECT_EQ(now(), (levels{0, 1, 0}));
    device_calls(&device);
    // The oldest of four samples counts, so a change is seen three intervals later.
    play(4, 40000);
    EXPECT_EQ(count_logged_like("FT: "), 0);
    play(1, 40000);
    EXPECT_EQ(infos_logged("FT: 48 F: 38"), 1);
    EXPECT_EQ(now(), (levels{0, 0, 0}));
    play(4, 40000);
    EXPECT_EQ(count_logged_like("FT: "), 1);
    play(1, 40000);
    EXPECT_EQ(infos_logged("FT: 48 F: 25"), 1);
    EXPECT_EQ(fia.data->fps, 59u);  // measured anew from the usual rate
    // A game of 30 frames per second has a target of its own.
    enter("slower");
    measure(33400);
    play(8, 50000);
    EXPECT_EQ(count_logged_like("FT: 24 F: "), 1);
}

TEST_F(Decision, ThirdReportInARowBelowTheLowThresholdMeasuresAgain) {
    start_active();
    play(3 * report_length, steady);
    device_calls(&device);
    clear_log();
    // Every eighth frame is a little late: half of the means are off, the frame rate is not.
    const auto shaky_report = [] {
        for (int i = 0; i < report_length; ++i)
            notify_fia_interval_changed(i % 8 == 0 ? 17500 : steady);
    };
    const fia_activity *in_use = fia.data->cur;
    shaky_report();
    shaky_report();
    EXPECT_EQ(fia.data->low_cnt, 2);
    play(report_length, steady);  // a good one in between starts the count anew
    EXPECT_EQ(fia.data->low_cnt, 0);
    EXPECT_EQ(fia.data->below_cnt, 0);
    shaky_report();
    shaky_report();
    EXPECT_EQ(infos_logged("SC2! PM Start"), 0);
    EXPECT_EQ(fia.data->below_cnt, 2);
    ASSERT_EQ(fia_clock_set_freq(3, levels{2, 2, 2}.data()), 0);
    fia.data->cur->jank_thresh = 1000;  // janks are another test's
    shaky_report();
    EXPECT_EQ(infos_logged("SC2! PM Start"), 1);
    // The scene remembers what it had reached, one step up.
    EXPECT_EQ(levels(in_use->rsc_idx, in_use->rsc_idx + 3), (levels{1, 2, 2}));
    EXPECT_EQ(fia.data->mode, fia_mode_pm);
    EXPECT_EQ(fia.data->restarted, 1u);
    EXPECT_EQ(fia.data->cur, fia_current_entry());
    EXPECT_EQ(fia.data->frame_cnt, 0);
}

TEST_F(Decision, ProfileThatIsLeftIsASceneChange) {
    start_active();
    play(report_length, steady);
    clear_log();
    device_calls(&device);
    // Faster than any bucket: hits by variance, but the moving mean has left the profile.
    play(report_length, 16000);
    EXPECT_EQ(count_logged_like("M Active: 16"), 1);
    EXPECT_EQ(infos_logged("SC1! PM Start"), 1);
    const calls seen = device_calls_of(&device, "set_tmk_freq");
    ASSERT_GE(seen.size(), 2u);
    EXPECT_EQ(seen[0], "set_tmk_freq TMK_GPU 596000000");  // lowered, then raised again
    EXPECT_EQ(seen[1], "set_tmk_freq TMK_GPU 710000000");
    EXPECT_EQ(fia.data->mode, fia_mode_pm);
    // A measurement started from AM takes no scene, however well one fits.
    play(900, steady);
    EXPECT_EQ(count_logged_like("SM at"), 0);
    play(1, steady);
    EXPECT_EQ(infos_logged("PM Complete!\n"), 1);
    EXPECT_EQ(scene(2), fia.data->cur);
    EXPECT_EQ(fia.data->restarted, 0u);
}

TEST_F(Decision, VarianceBeyondTheProfileIsASceneChangeToo) {
    start_active();
    fia.data->pm_retry = 3;
    const fia_pilot_table *pilot = fia.data->cur->pilot;
    fia.data->cur->v_active = pilot->vmax + pilot->mmax * pilot->mmax;
    EXPECT_EQ(fia_is_scene_changed(), 0);
    fia.data->cur->v_active += 1;
    EXPECT_EQ(fia_is_scene_changed(), 1);
    EXPECT_EQ(count_logged_like("V Active: "), 1);
    EXPECT_EQ(fia.data->pm_retry, 0);
    // Two buckets beyond the profile are still inside.
    fia.data->cur->v_active = 0;
    fia.data->cur->m_active = 100000 / 51;
    EXPECT_EQ(fia_is_scene_changed(), 0);
    fia.data->cur->m_active = 100000 / 51 + 1;
    EXPECT_EQ(fia_is_scene_changed(), 1);
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

TEST_F(Decision, SceneThatCannotBeStoredIsTriedAgain) {
    for (int k = 0; k < 4; ++k) {
        enter(("game" + std::to_string(k)).c_str());
        play(900, steady);
        clear_log();
        fail_allocation_after(k);
        play(1, steady);
        ASSERT_TRUE(allocation_has_failed());
        EXPECT_EQ(count_logged_like("Failed to allocate memory for "), 1);
        EXPECT_EQ(errors_logged("No current activity data"), 1);
        EXPECT_EQ(fia.data->mode, fia_mode_pm);
        EXPECT_EQ(fia_current_entry()->scene_cnt, 0);
        play(1, steady);
        EXPECT_EQ(fia.data->mode, fia_mode_am);
        EXPECT_EQ(fia_current_entry()->pilot->h, 100u);
        EXPECT_EQ(fia.data->scene_total, k + 1);
    }
}

}  // namespace
