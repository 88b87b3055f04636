#include "tools/lab/lab_json.h"

#include <cmath>

#include "tools/base/json.h"
#include "tools/lab/fit_text.h"

using nlohmann::ordered_json;

namespace {

constexpr int64_t place_max = 1000000;  // of indices in a file
constexpr double stored_digits = 1e6;   // of a play's figures in a file

// A bound that is none is null.
ordered_json bound(double value) {
    return std::isfinite(value) ? ordered_json(value) : ordered_json(nullptr);
}

void put_estimate(ordered_json *into, const std::string &name, const estimate &figure) {
    (*into)[name] = figure.mean;
    (*into)[name + "_low"] = bound(figure.low);
    (*into)[name + "_high"] = bound(figure.high);
}

ordered_json set_json(const setting_list &set) {
    ordered_json json = ordered_json::object();
    for (const auto &[name, value] : set)
        json[name] = value;
    return json;
}

void put_change(ordered_json *into, const game_result &before, const game_result &after,
                uint64_t first_seed) {
    const game_summary summary = summarise_game(before, first_seed);
    const game_change change = compare_game(before, after);
    (*into)["fps_lost_before"] = summary.lost.mean;
    put_estimate(into, "fps_lost_change", change.lost);
    (*into)["energy_saved_before"] = summary.saved.mean;
    put_estimate(into, "energy_saved_change", change.saved);
}

double stored(double value) {
    return std::round(value * stored_digits) / stored_digits;
}

ordered_json verdict_json(const set_verdict &verdict) {
    return {{"set", set_json(verdict.tried->set)},
            {"seeds", verdict.seeds},
            {"energy_saved", verdict.saved.mean},
            {"energy_saved_low", bound(verdict.saved.low)},
            {"energy_saved_high", bound(verdict.saved.high)},
            {"fps_lost", verdict.lost},
            {"worst_lost", bound(verdict.worst_lost)},
            {"worst_game", verdict.worst_game},
            {"worst_place", verdict.worst_place},
            {"cap_changes_per_minute", verdict.most_changes},
            {"holds", verdict.holds},
            {"broken_by", verdict.broken_by}};
}

ordered_json held_out_json(const held_out &verdict) {
    ordered_json json = {{"first_seed", verdict.first_seed}, {"seeds", verdict.seeds},
                         {"within", verdict.within},         {"holds", verdict.holds},
                         {"broken_by", verdict.broken_by},   {"worst_game", verdict.worst_game},
                         {"worst_lost", verdict.worst_lost}};
    put_estimate(&json, "saved", verdict.saved);
    put_estimate(&json, "saved_default", verdict.saved_default);
    put_estimate(&json, "gained", verdict.gained);
    return json;
}

ordered_json fitted_json(const fitted_figure &figure) {
    return {{"value", figure.value}, {"low", figure.low}, {"high", figure.high}};
}

}  // namespace

std::string game_result_line(const game_result &result, const game_result *before,
                             uint64_t first_seed, const std::string &place) {
    const game_summary of = summarise_game(result, first_seed);
    ordered_json cut;
    for (int i = 0; i < resource_count; ++i)
        cut[resource_names[i]] = of.capped.cut[i];
    ordered_json outcomes = ordered_json::array();
    for (const play_outcome &each : of.outcomes)
        outcomes.push_back(
            {{"learned_fps", each.learned_fps},
             {"plays", each.plays},
             {"odds", static_cast<double>(each.plays) / static_cast<double>(of.seeds)},
             {"fps_lost", each.fps_lost},
             {"energy_saved", each.energy_saved}});
    ordered_json line = {{"game", of.game},
                         {"fps_free", of.free.fps},
                         {"fps_capped", of.capped.fps},
                         {"low_free", of.free.low_fps},
                         {"low_capped", of.capped.low_fps},
                         {"missed_free", of.free.missed},
                         {"missed_capped", of.capped.missed}};
    put_estimate(&line, "fps_lost", of.lost);
    line["fps_lost_worst"] = of.lost_worst;
    line["worst_seed"] = of.worst_seed;
    put_estimate(&line, "energy_saved", of.saved);
    line["power_free_mw"] = of.free_mw;
    line["power_capped_mw"] = of.capped_mw;
    line["warmest_free_c"] = of.free.warmest_c;
    line["warmest_capped_c"] = of.capped.warmest_c;
    line["cut"] = cut;
    line["cap_changes_per_minute"] = of.changes_a_minute;
    line["reversals_per_minute"] = of.reversals_a_minute;
    line["settle_s"] = of.capped.settle_s;
    line["caps_left"] = of.caps_left;
    line["seeds"] = of.seeds;
    line["first_seed"] = first_seed;
    line["place"] = place;
    line["outcomes"] = outcomes;
    line["work_known"] = of.told;
    if (before != nullptr)
        put_change(&line, *before, result, first_seed);
    return json_write(line);
}

std::string tried_plays_line(const tried_plays &plays) {
    ordered_json games = ordered_json::array();
    for (const played_game &game : plays.games) {
        ordered_json lost = ordered_json::array();
        ordered_json saved = ordered_json::array();
        ordered_json changes = ordered_json::array();
        for (const set_play &play : game.plays) {
            lost.push_back(stored(play.lost));
            saved.push_back(stored(play.saved));
            changes.push_back(stored(play.changes));
        }
        games.push_back({{"game", game.name},
                         {"place", game.place},
                         {"first", game.first},
                         {"lost", lost},
                         {"saved", saved},
                         {"changes", changes}});
    }
    ordered_json line = {{"conditions", plays.conditions},
                         {"set", set_json(plays.set)},
                         {"plays", games},
                         {"caps_left", plays.caps_left}};
    if (!plays.error.empty())
        line["error"] = plays.error;
    return json_write(line);
}

bool tried_plays_read(std::string_view line, tried_plays *plays) {
    *plays = {};
    try {
        const ordered_json read = json_read(line);
        for (const auto &[name, value] : read.at("conditions").items())
            plays->conditions[name] = value.get<std::string>();
        for (const auto &[name, value] : read.at("set").items())
            plays->set.emplace_back(name, json_integer<int64_t>(value));
        if (plays->set.empty())
            return false;
        for (const ordered_json &each : read.at("plays")) {
            played_game game = {each.at("game"),
                                static_cast<size_t>(json_integer(each.at("place"), 0, place_max)),
                                static_cast<size_t>(json_integer(each.at("first"), 0, place_max)),
                                {}};
            const ordered_json &lost = each.at("lost");
            for (size_t i = 0; i < lost.size(); ++i)
                game.plays.push_back({lost[i], each.at("saved").at(i), each.at("changes").at(i)});
            plays->games.push_back(game);
        }
        plays->caps_left = read.value("caps_left", false);
        plays->error = read.value("error", "");
    } catch (const std::exception &) {
        return false;
    }
    return true;
}

std::string search_line(const search_result &found) {
    ordered_json front = ordered_json::array();
    for (const set_verdict &each : found.front)
        front.push_back(verdict_json(each));
    const auto nullable = [](const tried_set *tried) {
        return tried != nullptr ? ordered_json{{"set", set_json(tried->set)}}
                                : ordered_json(nullptr);
    };
    ordered_json line = {{"tried", found.tried},
                         {"plays", found.plays},
                         {"default", verdict_json(found.first)},
                         {"front", front},
                         {"best", nullable(found.best)},
                         {"chosen", nullable(found.chosen)}};
    line["held_out"] =
        found.chosen != nullptr ? held_out_json(found.verdict) : ordered_json(nullptr);
    return json_write(line);
}

std::string set_change_line(const set_change &change) {
    ordered_json line = {{"set", set_json(change.set)}};
    if (!change.error.empty()) {
        line["error"] = change.error;
        return json_write(line);
    }
    line["energy_saved"] = change.saved;
    put_estimate(&line, "energy_saved_change", change.saved_change);
    line["fps_lost"] = change.lost;
    put_estimate(&line, "fps_lost_change", change.lost_change);
    line["cap_changes_per_minute"] = change.changes;
    return json_write(line);
}

std::string fit_line(const fitted_game &fitted, const device_model &device) {
    ordered_json json = {{"game", fitted.game.name},
                         {"shape", fitted.game.serial ? "serial" : "parallel"}};
    for (size_t i = 0; i < fitted_count; ++i)
        json[fitted_names[i]] = fitted_json(fitted.figures[i]);
    constexpr const char *clocks[2] = {"full_ms", "lowest_ms"};
    for (size_t i = 0; i < 2; ++i) {
        json[std::string("cpu_") + clocks[i]] = fitted_json(fitted.cpu_ms[i]);
        json[std::string("gpu_") + clocks[i]] = fitted_json(fitted.gpu_ms[i]);
        json[std::string("both_") + clocks[i]] = fitted_json(fitted.both_ms[i]);
    }
    json["limit_fps"] = fitted.game.limit_fps;
    json["other_shape_worse_by"] = fitted.other_shape;
    json["panel_hz"] = fitted.panel_hz;
    json["held"] = ordered_json::array();
    for (const fitted_rate &rate : fitted.rates)
        json["held"].push_back({{"CLUSTER1", device.points[resource_big][rate.caps.big].mhz},
                                {"GPU", device.points[resource_gpu][rate.caps.gpu].mhz},
                                {"frames", rate.frames},
                                {"fps", rate.fps},
                                {"fitted_fps", rate.fitted_fps}});
    return json_write(json);
}
