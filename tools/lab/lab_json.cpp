#include "tools/lab/lab_json.h"

#include "tools/base/json.h"

using nlohmann::ordered_json;

namespace {

ordered_json tried_set_json(const tried_set &tried) {
    ordered_json set = ordered_json::object();
    for (const auto &[name, value] : tried.set)
        set[name] = value;
    if (!tried.error.empty())
        return {{"set", set}, {"error", tried.error}};
    ordered_json games = ordered_json::object();
    for (const tried_game &game : tried.games)
        games[game.name] = {{"lost", game.lost}, {"saved", game.saved}};
    return {{"set", set},
            {"games", games},
            {"minutes", tried.minutes},
            {"energy_saved", tried.energy_saved},
            {"fps_lost", tried.fps_lost},
            {"worst_lost", tried.worst_lost},
            {"worst_game", tried.worst_game},
            {"caps_left", tried.caps_left}};
}

}  // namespace

std::string game_result_line(const game_result &result) {
    ordered_json cut;
    for (int i = 0; i < resource_count; ++i)
        cut[resource_names[i]] = result.capped.cut[i];
    return json_write({{"game", result.game},
                       {"fps_free", result.free.fps},
                       {"fps_capped", result.capped.fps},
                       {"low_free", result.free.low_fps},
                       {"low_capped", result.capped.low_fps},
                       {"missed_free", result.free.missed},
                       {"missed_capped", result.capped.missed},
                       {"energy_saved", lab_energy_saved(result)},
                       {"cut", cut},
                       {"cap_changes_per_minute", result.capped.changes / result.minutes},
                       {"reversals_per_minute", result.capped.reversals / result.minutes},
                       {"settle_s", result.capped.settle_s},
                       {"caps_left", result.caps_left}});
}

std::string tried_set_line(const tried_set &tried) {
    return json_write(tried_set_json(tried));
}

bool tried_set_read(std::string_view line, tried_set *tried) {
    *tried = {};
    try {
        const ordered_json read = json_read(line);
        for (const auto &[name, value] : read.at("set").items())
            tried->set.emplace_back(name, json_integer<int64_t>(value));
        if (tried->set.empty())
            return false;
        if (read.contains("error")) {
            tried->error = read["error"].get<std::string>();
            return true;
        }
        for (const auto &[name, game] : read.at("games").get_ref<const ordered_json::object_t &>())
            tried->games.push_back({name, game.at("lost"), game.at("saved")});
        tried->minutes = read.at("minutes");
        tried->energy_saved = read.at("energy_saved");
        tried->fps_lost = read.at("fps_lost");
        tried->worst_lost = read.at("worst_lost");
        tried->worst_game = read.at("worst_game");
        tried->caps_left = read.value("caps_left", false);
    } catch (const std::exception &) {
        return false;
    }
    return true;
}

std::string search_line(size_t tried, const std::vector<tried_set> &front, const tried_set *best) {
    ordered_json sets = ordered_json::array();
    for (const tried_set &each : front)
        sets.push_back(tried_set_json(each));
    return json_write({{"tried", tried},
                       {"front", sets},
                       {"best", best != nullptr ? tried_set_json(*best) : ordered_json(nullptr)}});
}
