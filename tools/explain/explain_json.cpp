#include "tools/explain/explain_json.h"

#include <stdlib.h>

#include <cmath>
#include <optional>

#include "device/service_words.h"
#include "tools/base/json.h"

using nlohmann::ordered_json;

namespace {

template <typename value>
ordered_json or_null(const std::optional<value> &known) {
    return known ? ordered_json(*known) : ordered_json(nullptr);
}

// To milliseconds.
double rounded(double value_s) {
    return std::round(value_s * 1000) / 1000;
}

// A number without a fraction where it has none.
ordered_json number(double value) {
    constexpr double exact_max = 9e15;
    if (std::trunc(value) == value && std::fabs(value) < exact_max)
        return static_cast<int64_t>(value);
    return value;
}

ordered_json numbers_of(const decision &made) {
    ordered_json numbers = ordered_json::object();
    for (const fact &each : made.facts) {
        char *end = nullptr;
        const double value = each.is_text ? strtod(each.text.c_str(), &end) : each.number;
        // A line of the log has its values as texts.
        const bool is_number = !each.is_text || (made.row != nullptr && !each.text.empty() &&
                                                 *end == '\0' && std::isfinite(value));
        if (is_number)
            numbers[each.name] = number(value);
    }
    return numbers;
}

ordered_json side_of(const std::optional<double> &value, const std::string &text) {
    if (value)
        return number(*value);
    return text.empty() ? ordered_json(nullptr) : ordered_json(text);
}

ordered_json moved_of(const decision &made) {
    ordered_json moved = ordered_json::array();
    for (const moved_value &each : made.moved) {
        ordered_json one = {{"what", each.what},
                            {"from", side_of(each.from, each.from_text)},
                            {"to", side_of(each.to, each.to_text)}};
        if (!each.unit.empty())
            one["unit"] = each.unit;
        moved.push_back(one);
    }
    return moved;
}

ordered_json rate_json(const daemon_state &state) {
    ordered_json requests = ordered_json::array();
    for (const auto &[id, request] : state.requests) {
        const bool asks = request.value && rate_is_asked(*request.value);
        requests.push_back({{"requestor", requestor_word(id)},
                            {"id", id},
                            {"known", request.value.has_value()},
                            {"fps", asks ? ordered_json(*request.value) : ordered_json(nullptr)},
                            {"granted", or_null(request.granted)}});
    }
    ordered_json winner = nullptr;
    if (state.rate_winner && *state.rate_winner >= 0)
        winner = requestor_word(*state.rate_winner);
    return {{"fps", or_null(state.rate)}, {"winner", winner}, {"requests", requests}};
}

ordered_json analyser_json(const status &known) {
    const daemon_state &state = known.state;
    ordered_json analyser = {{"mode", analyser_mode_word(state.analyser)}};
    if (state.analyser == analyser_mode::suspended) {
        analyser["suspended_by"] = ordered_json::array();
        for (const int lock : state.locks)
            analyser["suspended_by"].push_back(lock_word(lock));
    }
    if (state.analyser == analyser_mode::measuring) {
        analyser["measured"] = state.measured;
        analyser["of"] = status_measurement_length(known);
    }
    if (state.analyser == analyser_mode::active) {
        analyser["scene"] = state.scene;
        analyser["scenes"] = daemon_state_scenes(state);
    }
    if (!state.activity.empty())
        analyser["activity"] = state.activity;
    return analyser;
}

ordered_json caps_json(const daemon_state &state) {
    ordered_json caps = ordered_json::array();
    for (const cap_state &cap : state.caps) {
        const bool known = daemon_state_knows(state, cap);
        caps.push_back(
            {{"name", cap.name},
             {"level", known ? ordered_json(cap.level) : ordered_json(nullptr)},
             {"mhz", known ? ordered_json(cap.hertz[cap.level] / 1e6) : ordered_json(nullptr)},
             {"full_mhz", cap.hertz[0] / 1e6}});
    }
    return caps;
}

ordered_json timers_json(const daemon_state &state) {
    ordered_json timers = ordered_json::array();
    for (const auto &[slot, end_ns] : state.timers)
        timers.push_back({{"slot", slot},
                          {"purpose", timer_word(slot)},
                          {"left_s", rounded(static_cast<double>(end_ns - state.now_ns) / 1e9)}});
    return timers;
}

}  // namespace

ordered_json decision_json(const decision &made) {
    const int64_t time_ms = made.time_ns / 1000000;
    return {{"t_s", static_cast<double>(time_ms) / 1e3},
            {"kind", decision_kind_word(decision_kind_of(made))},
            {"text", decision_sentence(made)},
            {"detail", decision_detail(made)},
            {"reason", decision_reason_word(made)},
            {"numbers", numbers_of(made)},
            {"moved", moved_of(made)},
            {"answer", or_null(made.answer)}};
}

namespace {

ordered_json run_json(const run_account &run, bool why) {
    const run_figures &figures = run.figures;
    ordered_json caps = ordered_json::object();
    for (const auto &[name, cap] : figures.caps)
        caps[name] = {{"changes", cap.changes},
                      {"lowered", figures_share(cap.lowered_ns, run.duration_ns)},
                      {"mean", figures_cap_mean(cap, run.duration_ns)}};
    ordered_json said = {{"duration_s", static_cast<double>(run.duration_ns) / 1e9},
                         {"caps", caps},
                         {"cap_changes", figures_cap_changes(figures)},
                         {"lowered", figures_share(figures.lowered_ns, run.duration_ns)},
                         {"measurements", figures.measurements},
                         {"restarts", figures.restarts},
                         {"returns", figures.returns},
                         {"janks", figures.janks},
                         {"judged", figures.judged}};
    if (!why)
        return said;
    said["decisions"] = ordered_json::array();
    for (const decision &made : run.decisions)
        said["decisions"].push_back(decision_json(made));
    return said;
}

}  // namespace

std::string decision_line(const decision &made) {
    return json_write(decision_json(made));
}

std::string status_line(const status &known) {
    const daemon_state &state = known.state;
    const bool lives = known.daemon != 0;
    ordered_json decisions = ordered_json::array();
    for (const decision &made : known.last)
        decisions.push_back(decision_json(made));
    ordered_json services = ordered_json::object();
    for (const device_service &service : device_services)
        services[service.name] = or_null(known.services.at(service.name));
    return json_write(
        {{"up", lives ? ordered_json(true) : ordered_json(nullptr)},
         {"pid", lives ? ordered_json(known.daemon) : ordered_json(nullptr)},
         {"up_s", lives ? ordered_json(rounded(known.up_s)) : ordered_json(nullptr)},
         {"window", or_null(state.window)},
         {"app", or_null(state.app)},
         {"mode", or_null(state.mode)},
         {"policy", or_null(state.policy)},
         {"panel_on", or_null(state.panel_on)},
         {"rate", rate_json(state)},
         {"image_mode", or_null(state.image_mode)},
         {"analyser", analyser_json(known)},
         {"caps", caps_json(state)},
         {"thermal", state.thermal},
         {"low_power",
          {{"on", or_null(state.low_power_on)}, {"level", or_null(state.low_power_level)}}},
         {"automode", or_null(state.automode)},
         {"mitigation", or_null(state.mitigation)},
         {"timers", timers_json(state)},
         {"services", services},
         {"decisions", decisions}});
}

std::string exact_replay_line(const exact_replay &replayed, bool why) {
    const replay_difference &difference = replayed.difference;
    ordered_json said = run_json(replayed.run, why);
    said["happenings"] = replayed.counts.happenings;
    said["messages"] = replayed.counts.messages;
    said["intervals"] = replayed.counts.intervals;
    said["records"] = replayed.counts.records;
    if (replayed.compared)
        said["different"] = difference.found;
    if (difference.found)
        said["first_difference"] = {{"line", difference.line},
                                    {"t_s", static_cast<double>(difference.time_ns) / 1e9},
                                    {"happening", difference.happening},
                                    {"recorded", difference.recorded},
                                    {"replayed", difference.replayed}};
    return json_write(said);
}

std::string modelled_replay_line(const run_account &run, const run_account *without, bool why) {
    ordered_json said = run_json(run, why);
    if (without != nullptr)
        said["without"] = run_json(*without, false);
    return json_write(said);
}
