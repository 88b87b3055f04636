#include "tools/explain/status.h"

#include <stdio.h>
#include <unistd.h>

#include <cmath>
#include <deque>

#include "device/service_words.h"
#include "device/virtual_device.h"
#include "fia/pilot.h"
#include "resource/fps_manager.h"
#include "tools/base/daemon_process.h"
#include "tools/base/exit_status.h"
#include "tools/base/json.h"
#include "tools/base/shown.h"
#include "tools/base/terminal.h"
#include "tools/device/delivery.h"
#include "tools/explain/moments.h"
#include "tools/explain/why.h"

using nlohmann::ordered_json;

namespace {

constexpr size_t decisions_shown = 10;
constexpr size_t title_width = 14;
constexpr char not_known[] = "not known";

struct status {
    daemon_state state;
    std::deque<decision> last;
    moment_source source;
    int daemon = 0;  // process id; 0: none, or a log alone
    double up_s = 0;
};

// Seconds since a process started.
double process_age_s(int process) {
    long long ticks = 0;
    constexpr char start_field[] =
        "%*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %*u %*u %*d %*d %*d %*d %*d %*d %lld";
    if (sscanf(process_stat(process).c_str(), start_field, &ticks) != 1)
        return 0;
    double up_s = 0;
    sscanf(device_read_file("/proc/uptime").c_str(), "%lf", &up_s);
    return up_s - static_cast<double>(ticks) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

// To milliseconds.
ordered_json rounded(double value_s) {
    return std::round(value_s * 1000) / 1000;
}

template <typename value>
ordered_json or_null(const std::optional<value> &known) {
    return known ? ordered_json(*known) : ordered_json(nullptr);
}

ordered_json describe_rate(const daemon_state &state) {
    ordered_json requests = ordered_json::array();
    for (const auto &[id, request] : state.requests) {
        const bool asks = request.value && *request.value >= fps_min && *request.value <= fps_max;
        requests.push_back(
            {{"requestor", requestor_word(id)},
             {"id", id},
             {"known", request.value.has_value()},
             {"fps", request.value && asks ? ordered_json(*request.value) : ordered_json(nullptr)},
             {"granted", or_null(request.granted)}});
    }
    ordered_json winner = nullptr;
    if (state.rate_winner && *state.rate_winner >= 0)
        winner = requestor_word(*state.rate_winner);
    return {{"fps", or_null(state.rate)}, {"winner", winner}, {"requests", requests}};
}

ordered_json describe_analyser(const daemon_state &state) {
    constexpr const char *modes[] = {not_known, "suspended", "measuring", "active"};
    ordered_json said = {{"mode", modes[state.analyser]}};
    if (state.analyser == analyser_suspended) {
        said["suspended_by"] = ordered_json::array();
        for (const int lock : state.locks)
            said["suspended_by"].push_back(lock_word(lock));
    }
    if (state.analyser == analyser_measuring) {
        said["measured"] = state.measured;
        said["of"] = fia_pm_length / std::max(state.tunables.period_divisor, 1);
    }
    if (state.analyser == analyser_active) {
        const auto scenes = state.scenes.find(state.slot);
        said["scene"] = state.scene;
        said["scenes"] = scenes != state.scenes.end() ? scenes->second : 0;
    }
    if (!state.activity.empty())
        said["activity"] = state.activity;
    return said;
}

ordered_json describe_caps(const daemon_state &state) {
    ordered_json caps = ordered_json::array();
    for (const cap_state &cap : state.caps) {
        const bool known = cap.known || state.calls_seen;
        caps.push_back(
            {{"name", cap.name},
             {"level", known ? ordered_json(cap.level) : ordered_json(nullptr)},
             {"mhz", known ? ordered_json(cap.hertz[cap.level] / 1e6) : ordered_json(nullptr)},
             {"full_mhz", cap.hertz[0] / 1e6}});
    }
    return caps;
}

ordered_json describe_services(const status &now) {
    ordered_json services = ordered_json::object();
    for (const device_service &service : device_services) {
        const auto told = now.state.services.find(service.name);
        if (now.daemon != 0)
            services[service.name] = socket_is_taken(service.socket);
        else
            services[service.name] =
                told != now.state.services.end() ? ordered_json(told->second) : nullptr;
    }
    return services;
}

ordered_json describe_timers(const daemon_state &state) {
    ordered_json timers = ordered_json::array();
    for (const auto &[slot, end_ns] : state.timers)
        timers.push_back({{"slot", slot},
                          {"purpose", timer_word(slot)},
                          {"left_s", rounded(static_cast<double>(end_ns - state.now_ns) / 1e9)}});
    return timers;
}

ordered_json describe_status(const status &now) {
    const daemon_state &state = now.state;
    ordered_json decisions = ordered_json::array();
    for (const decision &made : now.last)
        decisions.push_back(why_describe(made));
    return {{"up", now.daemon != 0 ? ordered_json(true) : ordered_json(nullptr)},
            {"pid", now.daemon != 0 ? ordered_json(now.daemon) : ordered_json(nullptr)},
            {"up_s", now.daemon != 0 ? rounded(now.up_s) : ordered_json(nullptr)},
            {"window", or_null(state.window)},
            {"app", or_null(state.app)},
            {"mode", or_null(state.mode)},
            {"policy", or_null(state.policy)},
            {"panel_on", or_null(state.panel_on)},
            {"rate", describe_rate(state)},
            {"image_mode", or_null(state.image_mode)},
            {"analyser", describe_analyser(state)},
            {"caps", describe_caps(state)},
            {"thermal", state.thermal},
            {"low_power",
             {{"on", or_null(state.low_power_on)}, {"level", or_null(state.low_power_level)}}},
            {"automode", or_null(state.automode)},
            {"mitigation", or_null(state.mitigation)},
            {"timers", describe_timers(state)},
            {"services", describe_services(now)},
            {"decisions", decisions}};
}

// ---- in words

std::string words_of(const ordered_json &value, const char *on = "on", const char *off = "off") {
    if (value.is_null())
        return not_known;
    if (value.is_boolean())
        return value.get<bool>() ? on : off;
    if (value.is_string())
        return shown(value.get<std::string>());
    if (value.is_number_float()) {
        char text[32];
        snprintf(text, sizeof(text), "%.0f", value.get<double>());
        return text;
    }
    return value.dump();
}

void print_row(const char *name, const std::string &text) {
    std::string row = name;
    row.resize(std::max(row.size(), title_width), ' ');
    print_folded(row + " " + text, title_width + 1);
}

std::string say_rate(const ordered_json &rate) {
    std::string text = words_of(rate["fps"]);
    if (!rate["winner"].is_null())
        text += ", wanted by " + words_of(rate["winner"]);
    for (const ordered_json &request : rate["requests"])
        text += "\n" + std::string(title_width + 1, ' ') + words_of(request["requestor"]) + ": " +
                (!request["fps"].is_null()      ? words_of(request["fps"])
                 : request["known"].get<bool>() ? "no wish"
                                                : "wish not known") +
                ", " + words_of(request["granted"], "counts", "does not count");
    return text;
}

std::string say_analyser(const ordered_json &analyser) {
    std::string text = words_of(analyser["mode"]);
    if (analyser.contains("measured"))
        text += " " + analyser["measured"].dump() + " of " + analyser["of"].dump();
    if (analyser.contains("scene"))
        text += " on scene " + analyser["scene"].dump() + " of " + analyser["scenes"].dump();
    if (analyser.contains("suspended_by"))
        for (const ordered_json &reason : analyser["suspended_by"])
            text += (text.find(':') == std::string::npos ? ": " : ", ") + words_of(reason);
    if (analyser.contains("activity"))
        text += " (\"" + words_of(analyser["activity"]) + "\")";
    return text;
}

std::string say_caps(const ordered_json &caps) {
    std::string text;
    for (const ordered_json &cap : caps)
        text += (text.empty() ? "" : ", ") + words_of(cap["name"]) + " " + words_of(cap["mhz"]) +
                " of " + words_of(cap["full_mhz"]) + " MHz";
    return text;
}

std::string say_list(const ordered_json &list, const char *key) {
    std::string text;
    for (const ordered_json &each : list) {
        text += (text.empty() ? "" : ", ") + words_of(key != nullptr ? each[key] : each);
        if (each.is_object() && each.contains("left_s")) {
            char left[32];
            snprintf(left, sizeof(left), " in %.1f s", each["left_s"].get<double>());
            text += left;
        }
    }
    return text.empty() ? "none" : text;
}

void print_status(const ordered_json &said, const std::deque<decision> &last) {
    if (!said["pid"].is_null())
        print_row("daemon",
                  "process " + said["pid"].dump() + ", up " + words_of(said["up_s"]) + " s");
    else
        print_row("daemon", not_known);
    print_row("in front", words_of(said["app"]) + ", window " + words_of(said["window"]));
    print_row("app mode", words_of(said["mode"]) + "; policy state " + words_of(said["policy"]));
    print_row("panel", words_of(said["panel_on"]));
    print_row("frame rate", say_rate(said["rate"]));
    print_row("image engine", "mode " + words_of(said["image_mode"]));
    print_row("analyser", say_analyser(said["analyser"]));
    print_row("caps", say_caps(said["caps"]));
    print_row("thermal", say_list(said["thermal"], nullptr));
    print_row("low power", said["low_power"]["on"] == 0 || said["low_power"]["on"].is_null()
                               ? words_of(said["low_power"]["on"].is_null() ? ordered_json(nullptr)
                                                                            : ordered_json(false))
                               : "on, level " + said["low_power"]["level"].dump());
    print_row("automode", words_of(said["automode"]));
    print_row("mitigation", words_of(said["mitigation"]));
    print_row("timers", say_list(said["timers"], "purpose"));
    for (const auto &[name, answers] : said["services"].items())
        print_row(name.c_str(), words_of(answers, "answers", "does not answer"));
    printf("last decisions\n");
    for (const decision &made : last)
        print_folded("  " + decision_text(made), decision_indent);
}

}  // namespace

int status_command(const std::string &root, const std::string &log, bool json) {
    status now;
    if (log.empty()) {
        now.daemon = daemon_process(root);
        if (now.daemon == 0) {
            if (json)
                printf("{\"up\":false}\n");
            return fail_without_daemon(root);
        }
        now.up_s = process_age_s(now.daemon);
    }
    const auto begin = [&](const moment_source &source) {
        now.state = daemon_state_make(source.figures);
    };
    const auto take = [&](const moment &each) {
        for (decision &made : why_take(&now.state, each))
            now.last.push_back(std::move(made));
        while (now.last.size() > decisions_shown)
            now.last.pop_front();
    };
    now.source = log.empty() ? moments_of_device(root, false, begin, take)
                             : moments_of_file(log, begin, take);
    const std::string name = log.empty() ? root : log;
    if (!now.source.error.empty())
        return refuse(name + ": " + now.source.error);
    for (const std::string &remark : now.source.remarks)
        warn(name + ": " + remark);
    const ordered_json said = describe_status(now);
    if (json)
        printf("%s\n", json_write(said).c_str());
    else
        print_status(said, now.last);
    return 0;
}
