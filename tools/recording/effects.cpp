#include "tools/recording/effects.h"

#include <sstream>
#include <utility>

#include "core/events.h"
#include "fia/freq_config.h"
#include "tools/recording/cap_call.h"

namespace {

std::string megahertz(double hertz) {
    std::ostringstream text;
    text << hertz / 1e6;
    return text.str();
}

std::string on_or_off(const std::string &value) {
    return value == "0" ? "off" : value == "1" ? "on" : value;
}

effect read_call(const record &call) {
    const std::string first = !call.values.empty() ? call.values[0] : "";
    const std::string second = call.values.size() > 1 ? call.values[1] : "";
    cap_call cap;
    if (cap_call_read(call, &cap))
        return {"cap of " + cap.name, "", megahertz(cap.hertz), " MHz"};
    if (call.name == "request_fps")
        return {"display", "", first, " frames per second"};
    if (call.name == "request_image_engine_mode")
        return {"image engine", "", "mode " + first, ""};
    if (call.name == "enable_thermal_config")
        return {"thermal configuration " + first, "", on_or_off(second), ""};
    if (call.name == "request_tmr_2cluster")
        return {"thermal mitigation", "", first == "4294967295" ? "released" : "requested", ""};
    if (call.name == "request_fbcn_en")
        return {"frame interval reports", "", on_or_off(first), ""};
    if (call.name == "request_fbcn_i_thresh")
        return {"frame intervals", "", first == "0" ? "wanted" : "not wanted", ""};
    if (call.name == "request_osprin_control")
        return {"osprin", "", on_or_off(first), ""};
    if (call.name == "set_osprin_gov_state")
        return {"osprin governor", "", first, ""};
    return {};
}

effect read_record(const record &came) {
    switch (came.kind) {
        case record_kind::call:
            return read_call(came);
        case record_kind::service:  // news where something else was said of its subject last
            if (came.values.empty())
                return {};
            return {came.name + ", " + came.values[0], "", came.values[0] + " " + came.values[1],
                    ""};
        case record_kind::property:
            return {"property " + came.name, "", came.values[0], ""};
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
            megahertz(cap_hertz(config.name, config.freqs[0]));
        delete[] config.freqs;
    }
    return present;
}

effect note_effect(effects *present, const record &came) {
    effect change = read_record(came);
    if (change.setting.empty() || record_is_refused(came))
        return {};
    const bool is_switch = change.setting.starts_with("thermal configuration ");
    std::string &known =
        present->settings.try_emplace(change.setting, is_switch ? "off" : "").first->second;
    if (known == change.value)
        return {};
    change.before = std::exchange(known, change.value);
    return change;
}

const char *mode_entered(const record &came) {
    if (came.kind == record_kind::event)
        for (const mode_word &row : mode_words)
            if (came.event == row.event)
                return row.word;
    return nullptr;
}
