// Lines of the frame interval analysis: its life and its measurements.
#include "tools/recording/tables.h"

namespace {

constexpr log_row rows[] = {
    {log_line::analyser_no_library, log_subject::analyser, log_priority::error, true,
     "Failed to get handle for fia",
     "The hardware library could not be opened; there is no frame interval analysis, and no "
     "frequency is ever capped.",
     "there is no frame interval analysis: the hardware library cannot be opened"},
    {log_line::analyser_thread, log_subject::analyser, log_priority::error, true,
     "Error initializing FIA thread",
     "The analyser's thread could not be started; no frequency is ever capped.",
     "there is no frame interval analysis: it has no thread"},
    {log_line::analyser_table_memory, log_subject::analyser, log_priority::error, true,
     "Failed to Initialize Activity Table",
     "Memory ran out for the table of activities; the analyser does not start.",
     "the analyser does not start: no memory for its table of activities"},
    {log_line::analyser_no_resources, log_subject::analyser, log_priority::error, true,
     "act[%d] rsc_max value is invalid:%d",
     "An entry of the activity table has this number of frequency resources, which is below 1; the "
     "analyser does not start.",
     "the analyser does not start: it has {2} frequency resources"},
    {log_line::analyser_level_memory, log_subject::analyser, log_priority::error, true,
     "act[%d] rsc_idx is null",
     "Memory ran out for the levels of this entry of the activity table; the analyser does not "
     "start.",
     "the analyser does not start: no memory for the levels of entry {1}"},
    {log_line::analyser_pilot_memory, log_subject::analyser, log_priority::error, true,
     "Failed to allocate memory for pilot table",
     "Memory ran out for a measurement: at start the analyser does not start, later a scene is not "
     "remembered.",
     "no memory for a measurement of the analyser"},
    {log_line::analyser_bucket_memory, log_subject::analyser, log_priority::error, true,
     "Failed to allocate memory for pilot table elements",
     "Memory ran out for the buckets of a measurement: at start the analyser does not start, later "
     "a scene is not remembered.",
     "no memory for the buckets of a measurement"},
    {log_line::analyser_data_memory, log_subject::analyser, log_priority::error, true,
     "Failed to allocate memory for fia data",
     "Memory ran out for the analyser's state; the analyser does not start.",
     "the analyser does not start: no memory for its state"},
    {log_line::analyser_stats_memory, log_subject::analyser, log_priority::error, true,
     "Failed to allocate memory for fia stats",
     "Memory ran out for the analyser's statistics; the analyser does not start.",
     "the analyser does not start: no memory for its statistics"},
    {log_line::analyser_failed, log_subject::analyser, log_priority::error, true,
     "Failed to Initialize FIA data: %d",
     "The analyser could not be built or the hardware library would not report intervals: an errno "
     "value, or the library's answers. No frequency is ever capped; the lines before may say more.",
     "the analyser does not start (result {1})"},
    {log_line::analyser_started, log_subject::analyser, log_priority::info, false,
     "FIA Thread Started.", "The analyser is ready and waits for a game.",
     "the analyser is ready and waits for a game"},
    {log_line::analyser_exited, log_subject::analyser, log_priority::info, true,
     "FIA Thread Exited.",
     "The analyser's start has failed and what it had built is taken down; the lines before say "
     "why.",
     "there is no frame interval analysis: the analyser's start has failed"},
    {log_line::analyser_thresholds, log_subject::analyser, log_priority::debug_features, false,
     "I thresh changed i_upper:%lu i_lower:%lu",
     "The thresholds of the kernel's interval reporting that the hardware library is asked for, "
     "upper and lower: 0 and 0 when the analyser starts and at each measurement, "
     "18446744073709551615 (all bits) and 0 when it is suspended.",
     nullptr},
    {log_line::analyser_locked, log_subject::analyser, log_priority::info, false,
     "FIA lock%d locked",
     "A reason to suspend the analysis: 0 the screen is off, 1 something covers the app, 2 no game "
     "is in front, 3 VR mode.",
     "a reason to suspend the analysis: {1|the screen is off|something covers the app|no game is "
     "in front|VR mode is on|an unknown one}"},
    {log_line::analyser_unlocked, log_subject::analyser, log_priority::info, false,
     "FIA lock%d unlocked",
     "A reason to suspend the analysis is gone: 0 the screen is off, 1 something covers the app, 2 "
     "no game is in front, 3 VR mode. When it was the last one, a measurement follows.",
     "a reason to suspend the analysis is gone: {1|the screen is on again|nothing covers the app "
     "any more|a game is in front|VR mode is over|an unknown one}"},
    {log_line::analyser_suspended, log_subject::analyser, log_priority::info, false,
     "FIA Suspended!",
     "The analysis is suspended: its levels are saved for the game's return and every cap is "
     "lifted.",
     "the analysis is suspended and every cap is lifted"},
    {log_line::analyser_no_activity, log_subject::analyser, log_priority::info, true,
     "%s: No current activity data",
     "The analysis was to be suspended (the operation named) while it had no activity, as when a "
     "scene could not be stored; its caps and mode stay as they are.",
     "the analysis is not suspended: it has no activity"},
    {log_line::analyser_resumed, log_subject::analyser, log_priority::info, false,
     "Escaping Suspend mode...",
     "No reason to suspend the analysis is left: the activity in front is looked up and measured.",
     "the analysis resumes"},
    {log_line::activity_hash, log_subject::analyser, log_priority::debug_features, false,
     "%s name_sum: %d hash: %d",
     "The name of the window in front, the sum of its bytes, and its slot in the table of "
     "activities, 0 to 22.",
     nullptr},
    {log_line::activity_bad_hash, log_subject::analyser, log_priority::debug_features, true,
     "Invalid hash: %d", "A slot outside 0 to 22 was looked up; the activity counts as new.",
     "the activity counts as new: there is no slot {1}"},
    {log_line::activity_known, log_subject::analyser, log_priority::info, false, "%s DETECT at %d",
     "The window in front has been analysed before and has this slot of the table, with the scenes "
     "that are remembered.",
     "the analyser knows {1}"},
    {log_line::activity_new, log_subject::analyser, log_priority::info, false, "%s NEW at %d",
     "The window in front is new to the analyser and gets this slot of the table.",
     "{1} is new to the analyser"},
    {log_line::activity_cleared, log_subject::analyser, log_priority::debug_features, false,
     "%s activity clear!",
     "A slot of the table is emptied of this activity (BLANK: of none) and its scenes: another one "
     "takes it, or the analyser's start has failed and is taken down.",
     nullptr},
    {log_line::interval_index, log_subject::measuring, log_priority::error, true,
     "interval index is out of bound: %d",
     "The analyser's ring of four intervals is at a place that there is not; intervals are "
     "dropped. Start the daemon again.",
     "an interval is dropped: the analyser's ring is out of bounds at {1}"},
    {log_line::measure_keeps_caps, log_subject::measuring, log_priority::info, false,
     "I'm the target! No clear freq",
     "A measurement begins and leaves the caps as they are. This build always lifts them and does "
     "not say so.",
     "a measurement begins and leaves the caps as they are"},
    {log_line::measure_too_slow, log_subject::measuring, log_priority::info, false,
     "too high interval at idx:%d",
     "The measurement is no good: its most frequent bucket, 0 for 60 frames per second and 3 less "
     "for each one further, stands for less than 9 frames per second.",
     "the measurement is no good: most intervals lie in bucket {1}, below 9 frames per second"},
    {log_line::measure_too_few, log_subject::measuring, log_priority::info, false,
     "HR is under %d > %d",
     "The measurement is no good: buckets are to hold the first number of the intervals in "
     "percent, and all of them together hold the second.",
     "the measurement is no good: {2} percent of the intervals have a bucket and {1} are wanted"},
    {log_line::measure_rule, log_subject::measuring, log_priority::info, false,
     "===================================================",
     "A rule of the table in which a finished measurement is logged.", nullptr},
    {log_line::measure_heading, log_subject::measuring, log_priority::info, false,
     "|  FPS  |  VALID  |  NUM  |  V_LOWER  |  V_UPPER  |", "The columns of the rows that follow.",
     nullptr},
    {log_line::measure_bucket, log_subject::measuring, log_priority::info, false,
     "|   %2d  |   %3d   |  %3d  |  %7lu  |  %7lu  |",
     "A bucket of a measurement: its frames per second, whether it belongs to the profile (1), its "
     "intervals, and the smallest and the largest variance, in squares of 10 us.",
     nullptr},
    {log_line::measure_bounds, log_subject::measuring, log_priority::info, false,
     "vmax=%lu, vmin=%lu, mmax=%lu, mmin=%lu, v_thresh=%d",
     "The measurement's largest and smallest variance (in squares of 10 us), the shortest interval "
     "of the slowest and of the fastest bucket of the profile (in 10 us), and how large a bucket's "
     "variance could be.",
     nullptr},
    {log_line::measure_share, log_subject::measuring, log_priority::info, false, "H=%d MSI=%d",
     "The measurement's result: the share of the intervals that lie in buckets of the profile, in "
     "percent, and the most frequent bucket, 0 for 60 frames per second and 3 less for each one "
     "further. Below 75 percent the measurement is no good.",
     "the measurement finds {1} percent of its intervals in the profile, most of them in bucket "
     "{2}"},
    {log_line::measure_complete, log_subject::measuring, log_priority::info, false, "PM Complete!",
     "The measurement is good: its profile is remembered as a scene, and the caps are worked from "
     "now on.",
     "the measurement is complete, and work on the caps begins"},
    {log_line::measure_again, log_subject::measuring, log_priority::info, false,
     "PM Restart! Retry : %d",
     "The measurement is no good and another one of 900 intervals begins: how many have been begun "
     "again, 10 at most.",
     "the measurement is no good and is begun again: retry {1} of 10"},
    {log_line::measure_over, log_subject::measuring, log_priority::info, false, "PM Over:%d",
     "The measurement is no good and so many retries have been made: the caps are worked with what "
     "there is, and are not lowered until the scene changes.",
     "no measurement was good in {1} retries: the caps are not lowered until the scene changes"},
};

}  // namespace

constinit const std::span<const log_row> log_analyser_lines = rows;
