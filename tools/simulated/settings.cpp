#include "tools/simulated/settings.h"

#include <stdio.h>

#include <charconv>
#include <iterator>

#include "tools/base/words.h"

namespace {

struct tunable_row {
    const char *name;
    int32_t fia_tunables::*field;
    int32_t least;
    int32_t most;
};

constexpr tunable_row tunables[] = {
    {"thresh_bias", &fia_tunables::thresh_bias, -100, 100},
    {"hit_rate_percent", &fia_tunables::hit_rate_percent, 0, 100},
    {"margin_percent", &fia_tunables::margin_percent, 0, 100},
    {"hold_margin_percent", &fia_tunables::hold_margin_percent, 0, 100},
    {"upstep_margin_percent", &fia_tunables::upstep_margin_percent, 0, 100},
    {"cpu_step_budget", &fia_tunables::cpu_step_budget, 0, 100},
    {"period_divisor", &fia_tunables::period_divisor, 1, 30},
};
static_assert(std::size(tunables) * sizeof(int32_t) == sizeof(fia_tunables));

std::string explain_unknown(const simulated_figures &figures, const std::string &name) {
    std::vector<std::string> known;
    for (const auto &[each, value] : settings_of(figures))
        known.push_back(each);
    std::string said = "no figure is named '" + name + "'";
    const std::string nearest = nearest_word(name, known);
    if (!nearest.empty())
        return said + ", did you mean '" + nearest + "'?";
    said += "; there are";
    for (const std::string &each : known)
        said.append(" ").append(each);
    return said;
}

// The level that "TABLE.LEVEL" names, or null.
uint32_t *find_level(simulated_figures *figures, const std::string &name) {
    for (tmk_freq_row &row : figures->rows)
        for (uint32_t level = 0; level < freq_level_slots && row.freqs[level] != 0; ++level)
            if (name == std::string(row.name) + "." + std::to_string(level))
                return &row.freqs[level];
    return nullptr;
}

}  // namespace

setting_list settings_of(const simulated_figures &figures) {
    setting_list list;
    for (const tunable_row &row : tunables)
        list.emplace_back(row.name, figures.tunables.*row.field);
    for (const tmk_freq_row &row : figures.rows)
        for (uint32_t level = 0; level < freq_level_slots && row.freqs[level] != 0; ++level)
            list.emplace_back(std::string(row.name) + "." + std::to_string(level),
                              row.freqs[level]);
    return list;
}

std::string setting_apply(simulated_figures *figures, const std::string &name, int64_t value) {
    for (const tunable_row &row : tunables) {
        if (name != row.name)
            continue;
        if (value < row.least || value > row.most) {
            char range[64];
            snprintf(range, sizeof(range), " is from %d to %d, not %ld", row.least, row.most,
                     static_cast<long>(value));
            return name + range;
        }
        figures->tunables.*row.field = static_cast<int32_t>(value);
        return {};
    }
    uint32_t *level = find_level(figures, name);
    if (level == nullptr)
        return explain_unknown(*figures, name);
    if (value < 1 || value > INT32_MAX)
        return name + " is a frequency, not " + std::to_string(value);
    *level = static_cast<uint32_t>(value);
    return {};
}

std::string setting_apply_text(simulated_figures *figures, const std::string &text) {
    const size_t equals = text.find('=');
    if (equals == std::string::npos)
        return "'" + text + "' is not NAME=VALUE";
    int64_t value = 0;
    const char *end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data() + equals + 1, end, value);
    if (error != std::errc() || rest != end)
        return "'" + text.substr(equals + 1) + "' is not a whole number";
    return setting_apply(figures, text.substr(0, equals), value);
}

std::string settings_check(const simulated_figures &figures) {
    for (const tmk_freq_row &row : figures.rows)
        for (uint32_t level = 1; level < freq_level_slots && row.freqs[level] != 0; ++level)
            if (row.freqs[level] >= row.freqs[level - 1])
                return std::string(row.name) + "." + std::to_string(level) +
                       " is not below the level before it";
    return {};
}

std::string settings_of_header(const recording_header &header, simulated_figures *figures) {
    for (const auto &[name, value] : header.settings) {
        const std::string wrong =
            setting_apply_text(figures, std::string(name).append("=").append(value));
        if (!wrong.empty())
            return "line 1: " + wrong;
    }
    return {};
}

std::string settings_apply_all(simulated_figures *figures, const std::vector<std::string> &texts) {
    for (const std::string &text : texts) {
        std::string wrong = setting_apply_text(figures, text);
        if (!wrong.empty())
            return wrong;
    }
    return settings_check(*figures);
}
