// Lines of the frame interval analysis: scenes, active mode and the caps that it works.
#include "tools/recording/tables.h"

namespace {

constexpr log_row rows[] = {
    {line_scene_rule, subject_scene, priority_debug_features, false,
     "--------------------------------------------------------",
     "A rule above and below a scene that is looked at.", nullptr},
    {line_scene_listed, subject_scene, priority_debug_features, false,
     "idx:%d, name:%s, ts:%ld, rsc1:%d, rsc2:%d, rsc3:%d, hit_rate:%d",
     "A remembered scene that a measurement is held against: its place, its activity, when it was "
     "stored or used last (milliseconds of the daemon's clock), the levels of TMK_CLUSTER1, "
     "TMK_CLUSTER0 and TMK_GPU (0: no cap), and the share of its own intervals in its profile, in "
     "percent.",
     nullptr},
    {line_scene_matched, subject_scene, priority_info, false, "SM at idx:%d Start AM",
     "The intervals fit the remembered scene of this place: the caps go to its levels at once, "
     "without the rest of the measurement.",
     "the intervals fit scene {1}, whose levels are used without measuring on"},
    {line_scene_mean, subject_scene, priority_info, false, "M Active: %lu, M Max: %d, M Min: %d",
     "The mean interval of late has left the profile: that mean and the bounds that it may not "
     "pass, in 10 us.",
     "the scene has changed: the mean interval of {1} x 10 us is outside {3} to {2}"},
    {line_scene_variance, subject_scene, priority_info, false, "V Active: %lu, V Thresh: %lu",
     "The variance of late has left the profile: that variance and its bound, in squares of 10 us.",
     "the scene has changed: the variance of {1} is above {2}"},
    {line_scene_removed, subject_scene, priority_debug_features, false, "%s scene removed!",
     "A remembered scene of this activity is forgotten, in favour of a newer one or with its "
     "activity.",
     nullptr},
    {line_scene_none_to_remove, subject_scene, priority_debug_features, false, "Nothing to remove",
     "A scene was to be forgotten and there is none.", nullptr},
    {line_scene_memory, subject_scene, priority_error, true,
     "Failed to allocate memory for activity data",
     "Memory ran out for a scene; the measurement just finished is not remembered, and is judged "
     "again with the next interval.",
     "the measurement is not remembered: no memory for a scene"},
    {line_active_no_activity, subject_active, priority_error, true, "No current activity data",
     "The caps were to be worked while there is no activity, as when a scene could not be stored; "
     "the measurement is judged again with the next interval.",
     "the caps are not worked: the analyser has no activity"},
    {line_active_average_index, subject_active, priority_error, true,
     "mv index is out of bound: %d",
     "The analyser's moving averages are at a place that there is not, and stand still. Start the "
     "daemon again.",
     "the moving averages stand still: out of bounds at {1}"},
    {line_active_slow, subject_active, priority_info, false, "FT: %d F: %d",
     "Since a cap was changed last the frame rate, the second number, is below the first, which is "
     "80 percent of the profile's usual one: a cap is to be raised a step, if any is lowered.",
     "a cap is to be raised: {2} frames per second are below {1}"},
    {line_active_jank, subject_active, priority_debug_features, false, "J: %d, JT: %d",
     "Intervals outside the profile among 30, the first number, are more than the second: a cap is "
     "to be raised a step, at most once in 30 intervals.",
     "a cap is to be raised: {1} janks within 30 intervals are more than {2}"},
    {line_active_jank_run, subject_active, priority_debug_features, false, "Successive Jank: %d",
     "So many intervals outside the profile came in a row, and one inside it has ended the row.",
     "{1} janks in a row are over"},
    {line_active_hits, subject_active, priority_info, false, "%d%% (%d/%d) H",
     "The report after 301 intervals: the share in percent, the number inside the profile and the "
     "number of all. From 85 percent of the profile's own share on a cap is to be lowered a step, "
     "below 90 percent one is to be raised or a measurement begins; so between the two both "
     "happen.",
     "{2} of {3} intervals lie in the profile, {1} percent"},
    {line_active_janks, subject_active, priority_debug_features, false, "%d%% (%d/%d) Jank!",
     "The report's other half: the share of janks in percent, their number, and the intervals of "
     "the report, 0 when it has begun a measurement.",
     "{2} janks in the report"},
    {line_active_scene_changed, subject_active, priority_info, false, "SC1! PM Start",
     "The scene has changed, as the line of its mean or variance says: a measurement begins, with "
     "every cap lifted.",
     "measuring again: the scene has changed"},
    {line_active_too_low, subject_active, priority_info, false, "SC2! PM Start",
     "The third report in a row below 90 percent of the profile's own share: a measurement begins, "
     "with every cap lifted.",
     "measuring again: three reports in a row fell short of the profile"},
    {line_active_too_often_low, subject_active, priority_info, false, "PM is required! PM Start",
     "The third report since the last good one that is not good: a measurement begins, with every "
     "cap lifted. With this build's margins each such report is already below 90 percent, so the "
     "line does not come.",
     "measuring again: three reports since the last good one fell short"},
    {line_caps_memory, subject_caps, priority_error, true, "Not enough memory",
     "Memory ran out for a frequency resource; the list of them is not built.",
     "no frequency is ever capped: no memory for a resource"},
    {line_caps_config, subject_caps, priority_error, true, "Failed to get frequency configuration",
     "A row of the frequency table could not be taken, as the line before says; the list of "
     "resources is not built.",
     "no frequency is ever capped: a row of the frequency table is no good"},
    {line_caps_config_null, subject_caps, priority_error, true, "freq info is null",
     "The frequency table was asked for a row without a place to put it.",
     "the frequency table was asked for a row without a place to put it"},
    {line_caps_config_bound, subject_caps, priority_error, true, "freq info index is out of bound",
     "The frequency table was asked for a row that it does not have.",
     "the frequency table was asked for a row that it does not have"},
    {line_caps_config_empty, subject_caps, priority_error, true,
     "No data on %s freq array. plz fill in!",
     "The frequency table's row of this name has no frequencies. This build's rows all have.",
     "the frequency table has no frequencies for {1}"},
    {line_caps_config_memory, subject_caps, priority_error, true,
     "Not enough memory to configure freq", "Memory ran out for the frequencies of a resource.",
     "no memory for the frequencies of a resource"},
    {line_caps_no_library, subject_caps, priority_error, true, "No handle to support thermal",
     "The hardware library could not be opened for frequency caps; the line before says why.",
     "frequency caps have no hardware library"},
    {line_caps_unsupported, subject_caps, priority_error, true,
     "Can't support thermal frequency scaling",
     "The hardware library cannot set frequency caps; the lines before say why. The analyser works "
     "and every cap is refused.",
     "frequencies cannot be capped: the hardware library cannot do it"},
    {line_caps_listed, subject_caps, priority_debug_features, false, "Below Freq Supported",
     "The frequency resources and their levels follow.", nullptr},
    {line_caps_range, subject_caps, priority_debug_features, false, "%s ~ %s would be set",
     "The first and the last frequency resource that can be capped.", nullptr},
    {line_caps_resource, subject_caps, priority_debug_features, false, "Frequncy : %s",
     "A frequency resource; its levels follow.", nullptr},
    {line_caps_level, subject_caps, priority_debug_features, false, "[%d] %d",
     "A level of the resource above, 0 the highest, and its frequency: kHz for a CPU cluster, Hz "
     "for the GPU.",
     nullptr},
    {line_caps_over_budget, subject_caps, priority_debug_features, false,
     "cpufreq limit is too excessive",
     "A level of a CPU cluster was not set: the levels of both clusters would add up to more than "
     "6.",
     "a CPU cap is not set: the levels of both clusters would add up to more than 6"},
    {line_caps_highest, subject_caps, priority_debug_features, false, "All Max Freq",
     "A cap was to be raised and none is left: every resource is at level 0.",
     "no cap is left to be raised"},
    {line_caps_lowest, subject_caps, priority_debug_features, false, "All Min Freq",
     "A cap was to be lowered and every resource is at its lowest level that is allowed.",
     "no cap can be lowered any further"},
    {line_caps_locked, subject_caps, priority_error, false, "Freq %s Locked %d",
     "Steps of the caps have ended so many times at the present level of this resource: it is not "
     "lowered to that level again until the caps are lifted or set. This build never locks. An "
     "error by its priority alone.",
     "{1} is not lowered to its present level again, after {2} stops there"},
};

}  // namespace

constinit const std::span<const log_row> log_caps_lines = rows;
