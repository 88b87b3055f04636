#include "tools/explain/status.h"

#include <stdio.h>

#include <algorithm>

#include "device/service_words.h"
#include "fia/pilot.h"
#include "tools/base/processes.h"
#include "tools/base/shown.h"
#include "tools/base/terminal.h"
#include "tools/device/delivery.h"
#include "tools/explain/why.h"

namespace {

constexpr size_t decisions_shown = 10;
constexpr size_t title_width = 14;
constexpr char not_known[] = "not known";

std::string words_of(const std::optional<bool> &known, const char *on = "on",
                     const char *off = "off") {
    return !known ? not_known : *known ? on : off;
}

std::string words_of(const std::optional<std::string> &known) {
    return known ? shown(*known) : not_known;
}

std::string words_of(const std::optional<int32_t> &known) {
    return known ? std::to_string(*known) : not_known;
}

std::string number_text(const char *format, double number) {
    char text[32];
    snprintf(text, sizeof(text), format, number);
    return text;
}

void print_row(const char *name, const std::string &text) {
    std::string row = name;
    row.resize(std::max(row.size(), title_width), ' ');
    print_folded(row + " " + text, title_width + 1);
}

void add_to_list(std::string *list, const std::string &text, const char *between = ", ") {
    list->append(list->empty() ? "" : between).append(text);
}

std::string wish_text(const rate_request &request) {
    if (!request.value)
        return "wish not known";
    return rate_is_asked(*request.value) ? std::to_string(*request.value) : "no wish";
}

std::string rate_text(const daemon_state &state) {
    std::string text = words_of(state.rate);
    if (state.rate_winner && *state.rate_winner >= 0)
        text += std::string(", wanted by ") + requestor_word(*state.rate_winner);
    for (const auto &[id, request] : state.requests)
        text += "\n" + std::string(title_width + 1, ' ') + requestor_word(id) + ": " +
                wish_text(request) + ", " + words_of(request.granted, "counts", "does not count");
    return text;
}

std::string analyser_text(const status &known) {
    const daemon_state &state = known.state;
    std::string text = analyser_mode_word(state.analyser);
    std::string reasons;
    for (const int lock : state.locks)
        add_to_list(&reasons, lock_word(lock));
    if (state.analyser == analyser_mode::measuring)
        text += " " + std::to_string(state.measured) + " of " +
                std::to_string(status_measurement_length(known));
    if (state.analyser == analyser_mode::active)
        text += " on scene " + std::to_string(state.scene) + " of " +
                std::to_string(daemon_state_scenes(state));
    if (state.analyser == analyser_mode::suspended && !reasons.empty())
        text += ": " + reasons;
    return state.activity.empty() ? text : text + " (\"" + shown(state.activity) + "\")";
}

std::string caps_text(const daemon_state &state) {
    std::string text;
    for (const cap_state &cap : state.caps)
        add_to_list(&text, cap.name + " " +
                               (daemon_state_knows(state, cap)
                                    ? number_text("%.0f", cap.hertz[cap.level] / 1e6)
                                    : not_known) +
                               " of " + number_text("%.0f", cap.hertz[0] / 1e6) + " MHz");
    return text;
}

std::string thermal_text(const daemon_state &state) {
    std::string text;
    for (const std::string &name : state.thermal)
        add_to_list(&text, shown(name));
    return text.empty() ? "none" : text;
}

std::string timers_text(const daemon_state &state) {
    std::string text;
    for (const auto &[slot, end_ns] : state.timers)
        add_to_list(
            &text, timer_word(slot) +
                       number_text(" in %.1f s", static_cast<double>(end_ns - state.now_ns) / 1e9));
    return text.empty() ? "none" : text;
}

std::string low_power_text(const daemon_state &state) {
    if (state.low_power_on.value_or(0) != 0)
        return "on, level " + words_of(state.low_power_level);
    return state.low_power_on ? "off" : not_known;
}

}  // namespace

status status_of(const std::string &root, int daemon, const std::string &file) {
    status known;
    known.daemon = daemon;
    if (daemon != 0)
        known.up_s = process_age_s(daemon);
    const auto begin = [&](const history_source &source) {
        known.state = daemon_state_make(source.figures);
    };
    const auto take = [&](const step &taken) {
        for (decision &made : why_take(&known.state, taken))
            known.last.push_back(std::move(made));
        while (known.last.size() > decisions_shown)
            known.last.pop_front();
    };
    known.source = file.empty() ? history_of_device(root, false, begin, take)
                                : history_of_file(file, begin, take);
    for (const device_service &service : device_services) {
        const auto told = known.state.services.find(service.name);
        std::optional<bool> &answers = known.services[service.name];
        if (daemon != 0)
            answers = socket_is_taken(service.socket);
        else if (told != known.state.services.end())
            answers = told->second;
    }
    return known;
}

int status_measurement_length(const status &known) {
    return fia_divided(fia_pm_length, known.state.tunables);
}

void status_print(const status &known) {
    const daemon_state &state = known.state;
    print_row("daemon", known.daemon == 0 ? not_known
                                          : "process " + std::to_string(known.daemon) + ", up " +
                                                number_text("%.0f", known.up_s) + " s");
    print_row("in front", words_of(state.app) + ", window " + words_of(state.window));
    print_row("app mode", words_of(state.mode) + "; policy state " + words_of(state.policy));
    print_row("panel", words_of(state.panel_on));
    print_row("frame rate", rate_text(state));
    print_row("image engine", "mode " + words_of(state.image_mode));
    print_row("analyser", analyser_text(known));
    print_row("caps", caps_text(state));
    print_row("thermal", thermal_text(state));
    print_row("low power", low_power_text(state));
    print_row("automode", words_of(state.automode));
    print_row("mitigation", words_of(state.mitigation));
    print_row("timers", timers_text(state));
    for (const device_service &service : device_services)
        print_row(service.name,
                  words_of(known.services.at(service.name), "answers", "does not answer"));
    printf("last decisions\n");
    for (const decision &made : known.last)
        print_folded("  " + decision_text(made), decision_indent);
}
