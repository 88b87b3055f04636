#include "tools/explain/caps_why.h"

#include <stdlib.h>

#include "fia/active_mode.h"

namespace {

constexpr double unit_ms = 1000.0 / static_cast<double>(interval_second);  // of its intervals

std::string levels_of(const daemon_state &state) {
    std::string text;
    for (const cap_state &cap : state.caps)
        text.append(text.empty() ? "" : " ").append(cap.known ? std::to_string(cap.level) : "?");
    return text;
}

std::string locks_of(const daemon_state &state) {
    std::string text;
    for (const int lock : state.locks)
        text.append(text.empty() ? "" : " and ").append(lock_word(lock));
    return text;
}

// What moved, with the game; nothing where no cap has.
void add_moves(const daemon_state &before, const daemon_state &after, const step &taken,
               decision *made) {
    for (size_t i = 0; i < before.caps.size(); ++i) {
        const cap_state &from = before.caps[i];
        const cap_state &to = after.caps[i];
        if (from.level != to.level && to.known)
            made->moved.push_back(
                {to.name, "MHz", from.hertz[from.level] / 1e6, to.hertz[to.level] / 1e6, "", ""});
    }
    if (made->moved.empty())
        return;
    made->answer = step_answer(taken, "set_tmk_freq");
    set_fact(made, "levels_from", levels_of(before));
    set_fact(made, "levels_to", levels_of(after));
    if (after.profile_share != 0)
        set_fact(made, "profile_fps", fia_bucket_fps(after.profile_bucket));
    if (!after.activity.empty())
        set_fact(made, "game", after.activity);
}

// How far the caps went: the sum of the levels, below 0 upwards.
int moved_by(const daemon_state &before, const daemon_state &after) {
    int sum = 0;
    for (size_t i = 0; i < before.caps.size(); ++i)
        sum += static_cast<int>(after.caps[i].level) - static_cast<int>(before.caps[i].level);
    return sum;
}

// The share of intervals in the profile that lets caps go down, or that keeps them where they are.
uint32_t share_needed(const daemon_state &state, bool down) {
    return fia_margin(down ? state.tunables.margin_percent : state.tunables.hold_margin_percent,
                      static_cast<uint32_t>(state.profile_share));
}

// A step of the caps, down or up, by the line that tells its cause.
decision explain_step(const daemon_state &before, const step &taken, bool down) {
    const record *slow = step_line(taken, log_line::active_slow);
    const record *janks = step_line(taken, log_line::active_jank);
    const record *hits = step_line(taken, log_line::active_hits);
    if (slow != nullptr && !down) {
        decision made = make_decision(taken, reason::caps_raised_rate);
        set_fact(&made, "fps", record_number(*slow, 1));
        set_fact(&made, "wanted", record_number(*slow, 0));
        return made;
    }
    if (janks != nullptr && !down) {
        decision made = make_decision(taken, reason::caps_raised_janks);
        set_fact(&made, "left", record_number(*janks, 0));
        set_fact(&made, "window", fia_divided(fia_jank_intervals, before.tunables));
        set_fact(&made, "allowed", record_number(*janks, 1));
        return made;
    }
    if (hits == nullptr)
        return make_decision(taken, reason::caps_moved);
    const bool known = before.profile_share != 0;
    decision made =
        make_decision(taken, down && known ? reason::caps_lowered : reason::caps_raised_share);
    set_fact(&made, "share", record_number(*hits, 0));
    set_fact(&made, "judged", record_number(*hits, 2));
    if (known)
        set_fact(&made, "needed", share_needed(before, down));
    return made;
}

// A step that a log tells of by its cause alone.
void explain_unseen_step(const daemon_state &before, const step &taken,
                         std::vector<decision> *made) {
    const record *hits = step_line(taken, log_line::active_hits);
    const bool up = step_line(taken, log_line::active_slow) != nullptr ||
                    step_line(taken, log_line::active_jank) != nullptr;
    if (!up && (hits == nullptr || before.profile_share == 0))
        return;
    const bool down = !up && record_number(*hits, 0) >= share_needed(before, true);
    made->push_back(explain_step(before, taken, down));
    set_fact(&made->back(), "step",
             std::string(down ? "down" : "up") + " one step, if one can move");
}

decision explain_mean(const step &taken, const record &mean) {
    const double mean_ms = record_number(mean, 0) * unit_ms;
    const double longest_ms = record_number(mean, 1) * unit_ms;
    const double shortest_ms = record_number(mean, 2) * unit_ms;
    const bool fastest = record_number(mean, 2) <= static_cast<double>(interval_60fps);
    decision made = make_decision(taken, mean_ms >= shortest_ms ? reason::scene_slower
                                         : fastest              ? reason::panel_too_fast
                                                                : reason::scene_faster);
    set_fact(&made, "mean_ms", mean_ms);
    set_fact(&made, "shortest_ms", shortest_ms);
    set_fact(&made, "longest_ms", longest_ms);
    return made;
}

// Why a measurement begins anew. False where none does.
bool explain_restart(const step &taken, decision *made) {
    const record *variance = step_line(taken, log_line::scene_variance);
    const record *hits = step_line(taken, log_line::active_hits);
    if (const record *mean = step_line(taken, log_line::scene_mean); mean != nullptr) {
        *made = explain_mean(taken, *mean);
        return true;
    }
    if (variance != nullptr) {
        *made = make_decision(taken, reason::scene_uneven);
        set_fact(made, "variance", record_number(*variance, 0));
        set_fact(made, "allowed", record_number(*variance, 1));
        return true;
    }
    if (step_line(taken, log_line::active_too_low) != nullptr)
        *made = make_decision(taken, reason::poor_in_a_row);
    else if (step_line(taken, log_line::active_too_often_low) != nullptr)
        *made = make_decision(taken, reason::poor_since_good);
    else if (step_line(taken, log_line::active_scene_changed) != nullptr)
        *made = make_decision(taken, reason::scene_changed);
    else
        return false;
    if (hits != nullptr && made->why != reason::scene_changed)
        set_fact(made, "share", record_number(*hits, 0));
    return true;
}

void explain_profile(const daemon_state &after, const step &taken, std::vector<decision> *made) {
    if (step_line(taken, log_line::measure_complete) == nullptr)
        return;
    made->push_back(make_decision(taken, reason::measured));
    set_fact(&made->back(), "profile_fps", fia_bucket_fps(after.profile_bucket));
    set_fact(&made->back(), "share", after.profile_share);
    if (after.scene > 0)
        set_fact(&made->back(), "scene", after.scene);
}

decision explain_resumed(const daemon_state &after, const step &taken) {
    decision made = make_decision(taken, reason::resumed);
    set_fact(&made, "activity", after.activity);
    const auto known = after.scenes.find(after.slot);
    if (step_line(taken, log_line::activity_new) == nullptr)
        set_fact(&made, "scenes", known != after.scenes.end() ? known->second : 0);
    return made;
}

// What the analyser does where it begins or ends to look. False where it does neither.
bool explain_mode(const daemon_state &after, const step &taken, decision *made) {
    if (explain_restart(taken, made))
        return true;
    if (step_line(taken, log_line::analyser_suspended) == nullptr &&
        step_line(taken, log_line::analyser_resumed) == nullptr)
        return false;
    if (after.analyser != analyser_mode::suspended) {
        *made = explain_resumed(after, taken);
        return true;
    }
    *made = make_decision(taken, reason::suspended);
    if (!after.locks.empty())
        set_fact(made, "locks", locks_of(after));
    return true;
}

}  // namespace

void explain_analyser(const daemon_state &before, const daemon_state &after, const step &taken,
                      std::vector<decision> *made) {
    explain_profile(after, taken, made);
    decision next;
    if (explain_mode(after, taken, &next)) {
        if (next.why != reason::resumed)
            add_moves(before, after, taken, &next);
        made->push_back(next);
        return;
    }
    if (const record *matched = step_line(taken, log_line::scene_matched); matched != nullptr) {
        next = make_decision(taken, reason::caps_restored);
        set_fact(&next, "scene", record_number(*matched, 0));
        add_moves(before, after, taken, &next);
        made->push_back(next);
        return;
    }
    if (!after.calls_seen) {
        explain_unseen_step(before, taken, made);
        return;
    }
    const int by = moved_by(before, after);
    next = explain_step(before, taken, by > 0);
    set_fact(&next, "step",
             std::string(by > 0 ? "down" : "up") + (abs(by) == 1 ? " one step" : ""));
    add_moves(before, after, taken, &next);
    if (!next.moved.empty())
        made->push_back(next);
}
