// Why caps move and measurements begin: the analyser's decisions.
#include <stdio.h>
#include <stdlib.h>

#include "tools/base/words.h"
#include "tools/explain/sentences.h"

namespace {

constexpr double unit_ms = 0.01;  // of the analyser's intervals

std::string value(const std::vector<std::string> *values, size_t index) {
    return values != nullptr && index < values->size() ? (*values)[index] : "?";
}

double milliseconds(const std::string &units) {
    return atof(units.c_str()) * unit_ms;
}

std::string megahertz(double hertz) {
    char text[32];
    snprintf(text, sizeof(text), "%.0f", hertz / 1e6);
    return text;
}

std::string levels_of(const daemon_state &state) {
    std::string text;
    for (const cap_state &cap : state.caps)
        text.append(text.empty() ? "" : " ").append(cap.known ? std::to_string(cap.level) : "?");
    return text;
}

// "GPU 596 -> 710 MHz (levels 0 1 1 -> 0 1 0)" with the game; empty where no cap has moved.
std::string describe_moves(const daemon_state &before, const daemon_state &after) {
    std::string text;
    for (size_t i = 0; i < before.caps.size(); ++i) {
        const cap_state &from = before.caps[i];
        const cap_state &to = after.caps[i];
        if (from.level == to.level || !to.known)
            continue;
        text += std::string(text.empty() ? "" : ", ") + from.name + " " +
                megahertz(from.hertz[from.level]) + " -> " + megahertz(to.hertz[to.level]) + " MHz";
    }
    if (text.empty())
        return text;
    text += " (levels " + levels_of(before) + " -> " + levels_of(after) + ")";
    if (after.profile_share != 0)
        text += "; " + std::to_string(60 - 3 * after.profile_bucket) + " fps game";
    if (!after.activity.empty())
        text += " \"" + after.activity + "\"";
    return text;
}

// How far the caps went: the sum of the levels, below 0 upwards.
int moved_by(const daemon_state &before, const daemon_state &after) {
    int sum = 0;
    for (size_t i = 0; i < before.caps.size(); ++i)
        sum += static_cast<int>(after.caps[i].level) - static_cast<int>(before.caps[i].level);
    return sum;
}

int share_of(int percent, int margin) {
    return percent * (100 - margin) / 100;
}

std::string explain_report(const daemon_state &before, const std::vector<std::string> &hits,
                           bool down) {
    const std::string seen =
        hits[0] + " % of the last " + hits[2] + " intervals lay in the profile, ";
    if (before.profile_share == 0)
        return seen + "how many are wanted is not known";
    if (down)
        return seen + "and " +
               std::to_string(share_of(before.profile_share, before.tunables.margin_percent)) +
               " % let them go down";
    return seen + "and " +
           std::to_string(share_of(before.profile_share, before.tunables.hold_margin_percent)) +
           " % are wanted";
}

std::string explain_step(const daemon_state &before, const moment &now, bool down) {
    const auto *slow = moment_line(now, line_active_slow);
    const auto *jank = moment_line(now, line_active_jank);
    const auto *hits = moment_line(now, line_active_hits);
    if (slow != nullptr && !down)
        return value(slow, 1) + " frames per second since caps moved last, " + value(slow, 0) +
               " are wanted";
    if (jank != nullptr && !down)
        return value(jank, 0) + " of the last " +
               std::to_string(30 / std::max(before.tunables.period_divisor, 1)) +
               " intervals left the profile, " + value(jank, 1) + " are allowed";
    if (hits != nullptr)
        return explain_report(before, *hits, down);
    return "why is not known, as debug lines are off";
}

// Why a measurement begins anew.
std::string explain_restart(const moment &now) {
    const auto *mean = moment_line(now, line_scene_mean);
    const auto *variance = moment_line(now, line_scene_variance);
    char text[256];
    if (mean != nullptr) {
        const double active_ms = milliseconds(value(mean, 0));
        const double longest_ms = milliseconds(value(mean, 1));
        const double shortest_ms = milliseconds(value(mean, 2));
        constexpr double fastest_ms = 16.66;  // of all profiles
        if (active_ms < shortest_ms && shortest_ms <= fastest_ms)
            snprintf(text, sizeof(text),
                     "the mean interval, %.2f ms, is shorter than the fastest of the profile "
                     "(%.2f ms): the panel runs faster than 60 frames per second, and caps stay "
                     "released",
                     active_ms, shortest_ms);
        else
            snprintf(text, sizeof(text),
                     "the mean interval, %.2f ms, is %s than the profile has them (%.2f to %.2f "
                     "ms): another scene",
                     active_ms, active_ms < shortest_ms ? "shorter" : "longer", shortest_ms,
                     longest_ms);
        return text;
    }
    if (variance != nullptr)
        return "intervals vary more than the profile has them (variance " + value(variance, 0) +
               ", " + value(variance, 1) + " is allowed): another scene";
    if (moment_line(now, line_active_too_low) != nullptr)
        return "the third report in a row with too few intervals in the profile (" +
               value(moment_line(now, line_active_hits), 0) + " %)";
    if (moment_line(now, line_active_too_often_low) != nullptr)
        return "the third poor report since the last good one (" +
               value(moment_line(now, line_active_hits), 0) + " %)";
    if (moment_line(now, line_active_scene_changed) != nullptr)
        return "the scene has changed";
    return {};
}

void add_profile(const daemon_state &after, const moment &now, std::vector<decision> *made) {
    if (moment_line(now, line_measure_complete) == nullptr)
        return;
    add_decision(made, now, decision_measuring,
                 "the measurement is complete: most of its intervals are of " +
                     std::to_string(60 - 3 * after.profile_bucket) + " frames per second, " +
                     std::to_string(after.profile_share) + " % lie in the profile",
                 (after.scene > 0 ? "kept as scene " + std::to_string(after.scene) + "; " : "") +
                     "from now on caps go down as far as the profile holds");
}

std::string describe_activity(const daemon_state &after, const moment &now) {
    const std::string name = "\"" + after.activity + "\" is ";
    if (moment_line(now, line_activity_new) != nullptr)
        return name + "new to the analyser";
    const auto known = after.scenes.find(after.slot);
    const int scenes = known != after.scenes.end() ? known->second : 0;
    return name + "known, with " + counted(static_cast<size_t>(scenes), "scene");
}

// A step of the caps that a log tells of by its cause alone.
void explain_unseen_step(const daemon_state &before, const moment &now,
                         std::vector<decision> *made) {
    const auto *hits = moment_line(now, line_active_hits);
    const bool up = moment_line(now, line_active_slow) != nullptr ||
                    moment_line(now, line_active_jank) != nullptr;
    if (!up && (hits == nullptr || before.profile_share == 0))
        return;
    const bool down = !up && atoi((*hits)[0].c_str()) >=
                                 share_of(before.profile_share, before.tunables.margin_percent);
    add_decision(made, now, decision_caps,
                 std::string("caps ") + (down ? "down" : "up") +
                     " one step, if one can move: " + explain_step(before, now, down),
                 "which one is not in the log");
}

std::string describe_locks(const daemon_state &state) {
    std::string text;
    for (const int lock : state.locks)
        text.append(text.empty() ? "" : " and ").append(lock_word(lock));
    return text.empty() ? "why is not known" : text;
}

}  // namespace

void explain_analyser(const daemon_state &before, const daemon_state &after, const moment &now,
                      std::vector<decision> *made) {
    const std::string moves = describe_moves(before, after);
    const std::string restart = explain_restart(now);
    add_profile(after, now, made);
    if (!restart.empty()) {
        add_decision(made, now, decision_measuring, "measuring again: " + restart,
                     moves.empty() ? "" : "caps released: " + moves);
        return;
    }
    const bool told = moment_line(now, line_analyser_suspended) != nullptr ||
                      moment_line(now, line_analyser_resumed) != nullptr;
    if (told && after.analyser == analyser_suspended) {
        add_decision(made, now, decision_analyser, "suspended: " + describe_locks(after),
                     moves.empty() ? "caps were released already" : "caps released: " + moves);
        return;
    }
    if (told) {
        add_decision(made, now, decision_analyser,
                     "measuring begins: nothing suspends the analysis any more",
                     describe_activity(after, now));
        return;
    }
    if (const auto *matched = moment_line(now, line_scene_matched); matched != nullptr) {
        add_decision(made, now, decision_caps,
                     "caps as they were: the intervals are those of scene " + value(matched, 0),
                     moves);
        return;
    }
    if (!after.calls_seen) {
        explain_unseen_step(before, now, made);
        return;
    }
    if (moves.empty())
        return;
    const int by = moved_by(before, after);
    const bool down = by > 0;
    add_decision(made, now, decision_caps,
                 std::string("caps ") + (down ? "down" : "up") +
                     (abs(by) == 1 ? " one step: " : ": ") + explain_step(before, now, down),
                 moves);
}
