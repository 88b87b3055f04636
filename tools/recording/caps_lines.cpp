// Lines of the frame interval analysis: scenes, active mode and the caps that it works.
#include "tools/recording/tables.h"

namespace {

constexpr log_row rows[] = {
    {log_line::scene_rule, log_subject::scene, log_priority::debug_features, false,
     "--------------------------------------------------------",
     "A rule above and below a scene that is looked at.", nullptr},
    {log_line::scene_listed, log_subject::scene, log_priority::debug_features, false,
     "idx:%d, name:%s, ts:%ld, rsc1:%d, rsc2:%d, rsc3:%d, hit_rate:%d",
     "A remembered scene that a measurement is held against: its place, its activity, when it was "
     "stored or used last (milliseconds of the daemon's clock), the levels of TMK_CLUSTER1, "
     "TMK_CLUSTER0 and TMK_GPU (0: no cap), and the share of its own intervals in its profile, in "
     "percent.",
     nullptr},
    {log_line::scene_matched, log_subject::scene, log_priority::info, false,
     "SM at idx:%d Start AM",
     "The intervals fit the remembered scene of this place: the caps go to its levels at once, "
     "without the rest of the measurement.",
     "the intervals fit scene {1}, whose levels are used without measuring on"},
    {log_line::scene_mean, log_subject::scene, log_priority::info, false,
     "M Active: %lu, M Max: %d, M Min: %d",
     "The mean interval of late has left the profile: that mean and the bounds that it may not "
     "pass, in 10 us.",
     "the scene has changed: the mean interval of {1} x 10 us is outside {3} to {2}"},
    {log_line::scene_variance, log_subject::scene, log_priority::info, false,
     "V Active: %lu, V Thresh: %lu",
     "The variance of late has left the profile: that variance and its bound, in squares of 10 us.",
     "the scene has changed: the variance of {1} is above {2}"},
    {log_line::scene_removed, log_subject::scene, log_priority::debug_features, false,
     "%s scene removed!",
     "A remembered scene of this activity is forgotten, in favour of a newer one or with its "
     "activity.",
     nullptr},
    {log_line::scene_none_to_remove, log_subject::scene, log_priority::debug_features, false,
     "Nothing to remove", "A scene was to be forgotten and there is none.", nullptr},
    {log_line::scene_memory, log_subject::scene, log_priority::error, true,
     "Failed to allocate memory for activity data",
     "Memory ran out for a scene; the measurement just finished is not remembered, and is judged "
     "again with the next interval.",
     "the measurement is not remembered: no memory for a scene"},
    {log_line::active_no_activity, log_subject::active, log_priority::error, true,
     "No current activity data",
     "The caps were to be worked while there is no activity, as when a scene could not be stored; "
     "the measurement is judged again with the next interval.",
     "the caps are not worked: the analyser has no activity"},
    {log_line::active_average_index, log_subject::active, log_priority::error, true,
     "mv index is out of bound: %d",
     "The analyser's moving averages are at a place that there is not, and stand still. Start the "
     "daemon again.",
     "the moving averages stand still: out of bounds at {1}"},
    {log_line::active_slow, log_subject::active, log_priority::info, false, "FT: %d F: %d",
     "Since a cap was changed last the frame rate, the second number, is below the first, which is "
     "80 percent of the profile's usual one: a cap is to be raised a step, if any is lowered.",
     "a cap is to be raised: {2} frames per second are below {1}"},
    {log_line::active_jank, log_subject::active, log_priority::debug_features, false,
     "J: %d, JT: %d",
     "Intervals outside the profile among 30, the first number, are more than the second: a cap is "
     "to be raised a step, at most once in 30 intervals.",
     "a cap is to be raised: {1} janks within 30 intervals are more than {2}"},
    {log_line::active_jank_run, log_subject::active, log_priority::debug_features, false,
     "Successive Jank: %d",
     "So many intervals outside the profile came in a row, and one inside it has ended the row.",
     "{1} janks in a row are over"},
    {log_line::active_hits, log_subject::active, log_priority::info, false, "%d%% (%d/%d) H",
     "The report after 301 intervals: the share in percent, the number inside the profile and the "
     "number of all. From 85 percent of the profile's own share on a cap is to be lowered a step, "
     "below 90 percent one is to be raised or a measurement begins; so between the two both "
     "happen.",
     "{2} of {3} intervals lie in the profile, {1} percent"},
    {log_line::active_janks, log_subject::active, log_priority::debug_features, false,
     "%d%% (%d/%d) Jank!",
     "The report's other half: the share of janks in percent, their number, and the intervals of "
     "the report, 0 when it has begun a measurement.",
     "{2} janks in the report"},
    {log_line::active_scene_changed, log_subject::active, log_priority::info, false,
     "SC1! PM Start",
     "The scene has changed, as the line of its mean or variance says: a measurement begins, with "
     "every cap lifted.",
     "measuring again: the scene has changed"},
    {log_line::active_too_low, log_subject::active, log_priority::info, false, "SC2! PM Start",
     "The third report in a row below 90 percent of the profile's own share: a measurement begins, "
     "with every cap lifted.",
     "measuring again: three reports in a row fell short of the profile"},
    {log_line::active_too_often_low, log_subject::active, log_priority::info, false,
     "PM is required! PM Start",
     "The third report since the last good one that is not good: a measurement begins, with every "
     "cap lifted. With this build's margins each such report is already below 90 percent, so the "
     "line does not come.",
     "measuring again: three reports since the last good one fell short"},
    {log_line::caps_memory, log_subject::caps, log_priority::error, true, "Not enough memory",
     "Memory ran out for a frequency resource; the list of them is not built.",
     "no frequency is ever capped: no memory for a resource"},
    {log_line::caps_config, log_subject::caps, log_priority::error, true,
     "Failed to get frequency configuration",
     "A row of the frequency table could not be taken, as the line before says; the list of "
     "resources is not built.",
     "no frequency is ever capped: a row of the frequency table is no good"},
    {log_line::caps_config_null, log_subject::caps, log_priority::error, true, "freq info is null",
     "The frequency table was asked for a row without a place to put it.",
     "the frequency table was asked for a row without a place to put it"},
    {log_line::caps_config_bound, log_subject::caps, log_priority::error, true,
     "freq info index is out of bound",
     "The frequency table was asked for a row that it does not have.",
     "the frequency table was asked for a row that it does not have"},
    {log_line::caps_config_empty, log_subject::caps, log_priority::error, true,
     "No data on %s freq array. plz fill in!",
     "The frequency table's row of this name has no frequencies. This build's rows all have.",
     "the frequency table has no frequencies for {1}"},
    {log_line::caps_config_memory, log_subject::caps, log_priority::error, true,
     "Not enough memory to configure freq", "Memory ran out for the frequencies of a resource.",
     "no memory for the frequencies of a resource"},
    {log_line::caps_no_library, log_subject::caps, log_priority::error, true,
     "No handle to support thermal",
     "The hardware library could not be opened for frequency caps; the line before says why.",
     "frequency caps have no hardware library"},
    {log_line::caps_unsupported, log_subject::caps, log_priority::error, true,
     "Can't support thermal frequency scaling",
     "The hardware library cannot set frequency caps; the lines before say why. The analyser works "
     "and every cap is refused.",
     "frequencies cannot be capped: the hardware library cannot do it"},
    {log_line::caps_listed, log_subject::caps, log_priority::debug_features, false,
     "Below Freq Supported", "The frequency resources and their levels follow.", nullptr},
    {log_line::caps_range, log_subject::caps, log_priority::debug_features, false,
     "%s ~ %s would be set", "The first and the last frequency resource that can be capped.",
     nullptr},
    {log_line::caps_resource, log_subject::caps, log_priority::debug_features, false,
     "Frequncy : %s", "A frequency resource; its levels follow.", nullptr},
    {log_line::caps_level, log_subject::caps, log_priority::debug_features, false, "[%d] %d",
     "A level of the resource above, 0 the highest, and its frequency: kHz for a CPU cluster, Hz "
     "for the GPU.",
     nullptr},
    {log_line::caps_over_budget, log_subject::caps, log_priority::debug_features, false,
     "cpufreq limit is too excessive",
     "A level of a CPU cluster was not set: the levels of both clusters would add up to more than "
     "6.",
     "a CPU cap is not set: the levels of both clusters would add up to more than 6"},
    {log_line::caps_highest, log_subject::caps, log_priority::debug_features, false, "All Max Freq",
     "A cap was to be raised and none is left: every resource is at level 0.",
     "no cap is left to be raised"},
    {log_line::caps_lowest, log_subject::caps, log_priority::debug_features, false, "All Min Freq",
     "A cap was to be lowered and every resource is at its lowest level that is allowed.",
     "no cap can be lowered any further"},
    {log_line::caps_locked, log_subject::caps, log_priority::error, false, "Freq %s Locked %d",
     "Steps of the caps have ended so many times at the present level of this resource: it is not "
     "lowered to that level again until the caps are lifted or set. This build never locks. An "
     "error by its priority alone.",
     "{1} is not lowered to its present level again, after {2} stops there"},
};

}  // namespace

constinit const std::span<const log_row> log_caps_lines = rows;
