#include "tools/recording/effects.h"

#include <stdlib.h>

#include <iterator>
#include <sstream>
#include <utility>

#include "core/events.h"
#include "fia/freq_config.h"
#include "tools/recording/cap_call.h"

namespace {

std::string megahertz(const std::string &cap, const std::string &frequency) {
    std::ostringstream text;
    text << cap_hertz(cap, atof(frequency.c_str())) / 1e6;
    return text.str();
}

std::string on_or_off(const std::string &value) {
    return value == "0" ? "off" : value == "1" ? "on" : value;
}

effect read_call(const std::vector<std::string> &words) {
    const std::string &name = words[0];
    const std::string first = words.size() > 1 ? words[1] : "";
    const std::string second = words.size() > 2 ? words[2] : "";
    if (name == "request_fps")
        return {"display", "", first, " frames per second"};
    if (name == "set_tmk_freq")
        return {"cap of " + first, "", megahertz(first, second), " MHz"};
    if (name == "request_image_engine_mode")
        return {"image engine", "", "mode " + first, ""};
    if (name == "enable_thermal_config")
        return {"thermal configuration " + first, "", on_or_off(second), ""};
    if (name == "request_tmr_2cluster")
        return {"thermal mitigation", "", first == "4294967295" ? "released" : "requested", ""};
    if (name == "request_fbcn_en")
        return {"frame interval reports", "", on_or_off(first), ""};
    if (name == "request_fbcn_i_thresh")
        return {"frame intervals", "", first == "0" ? "wanted" : "not wanted", ""};
    if (name == "request_osprin_control")
        return {"osprin", "", on_or_off(first), ""};
    if (name == "set_osprin_gov_state")
        return {"osprin governor", "", first, ""};
    return {};
}

// A message to a service, "frame-rate service" and what is said behind two blanks: news where
// something else was said of its subject last.
effect read_message(const std::string &text) {
    const size_t gap = text.find("  ");
    if (gap == std::string::npos)
        return {};
    const std::string said = text.substr(gap + 2);
    return {text.substr(0, gap) + ", " + said.substr(0, said.rfind(' ')), "", said, ""};
}

effect read_entry(const timeline_entry &entry) {
    std::istringstream stream(entry.text);
    const std::vector<std::string> words{std::istream_iterator<std::string>(stream), {}};
    if (words.empty())
        return {};
    switch (entry.kind) {
        case timeline_hardware:
            return read_call(words);
        case timeline_service:
            return read_message(entry.text);
        case timeline_property:
            return {"property " + words[0], "", words.size() > 1 ? words[1] : "", ""};
        default:
            return {};
    }
}

struct mode_word {
    event_id event;
    const char *word;
};

constexpr mode_word mode_words[] = {
    {EV_MODE_NONE, "no specific app"},
    {EV_MODE_GAME_DEFAULT, "game"},
    {EV_MODE_GAME_TUNER, "game under the tuner"},
    {EV_MODE_BROWSER, "browser"},
    {EV_MODE_SNS, "social app"},
    {EV_MODE_GEO, "navigation"},
    {EV_MODE_HOME, "home"},
    {EV_MODE_GALLERY, "gallery"},
};

}  // namespace

effects make_effects() {
    effects present;
    present.settings = {{"display", "60"},
                        {"image engine", "mode 0"},
                        {"osprin", "off"},
                        {"frame interval reports", "on"},
                        {"frame intervals", "wanted"},
                        {"thermal mitigation", "released"},
                        {"property sys.zuv.vtmode", "0"}};
    for (int32_t index = 0; index < get_freq_config_num(); ++index) {
        freq_config config = {};
        config.index = index;
        if (get_freq_config(&config) != 0)
            continue;
        present.settings[std::string("cap of ") + config.name] =
            megahertz(config.name, std::to_string(config.freqs[0]));
        delete[] config.freqs;
    }
    return present;
}

effect note_effect(effects *present, const timeline_entry &entry) {
    effect now = read_entry(entry);
    if (now.setting.empty())
        return {};
    const bool is_switch = now.setting.starts_with("thermal configuration ");
    std::string &known =
        present->settings.try_emplace(now.setting, is_switch ? "off" : "").first->second;
    if (known == now.value)
        return {};
    now.before = std::exchange(known, now.value);
    return now;
}

const char *mode_entered(const timeline_entry &entry) {
    if (entry.kind == timeline_event)
        for (const mode_word &row : mode_words)
            if (strtoul(entry.text.c_str(), nullptr, 10) == row.event)
                return row.word;
    return nullptr;
}
