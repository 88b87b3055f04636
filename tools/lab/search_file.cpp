#include "tools/lab/search_file.h"

#include <algorithm>
#include <filesystem>

#include "tools/base/whole_file.h"

namespace {

// Adds plays of a set to those that are known of it.
void add_plays(std::vector<tried_set> *sets, const lab_search &search, tried_plays &&read) {
    auto found = std::find_if(sets->begin(), sets->end(),
                              [&](const tried_set &each) { return each.set == read.set; });
    if (found == sets->end()) {
        found = sets->insert(sets->end(), tried_set{read.set, "", {}, false});
        for (const game_work &game : search.setup.games)
            found->games.push_back(
                {game.name, std::vector<std::vector<set_play>>(search.places.size())});
    }
    found->error = read.error;
    found->caps_left |= read.caps_left;
    for (const played_game &each : read.games) {
        const auto game =
            std::find_if(found->games.begin(), found->games.end(),
                         [&](const tried_game &known) { return known.name == each.name; });
        if (game == found->games.end() || each.place >= game->plays.size())
            continue;
        std::vector<set_play> &plays = game->plays[each.place];
        // What two shards have played counts once.
        for (size_t i = 0; i < each.plays.size(); ++i)
            if (each.first + i == plays.size())
                plays.push_back(each.plays[i]);
    }
}

// Why plays are of no use here; empty where they are of this very search.
std::string check_conditions(const std::map<std::string, std::string> &read,
                             const std::map<std::string, std::string> &here) {
    const auto there = [&read](const std::string &name) {
        const auto found = read.find(name);
        return found != read.end() ? found->second : "";
    };
    const auto other = std::find_if(here.begin(), here.end(), [&there](const auto &condition) {
        return there(condition.first) != condition.second;
    });
    if (other == here.end())
        return {};
    return "is of another search: " + other->first + " is '" + there(other->first) +
           "' there and '" + other->second + "' here";
}

}  // namespace

std::string search_file_read(const std::string &path, const lab_search &search, bool goes_on,
                             tried_file *tried) {
    std::error_code error;
    if (!std::filesystem::exists(path, error))
        return {};
    if (!std::filesystem::is_regular_file(path, error))
        return path + " is no file";
    const whole_file content = whole_file_open(path);
    if (!content.error.empty())
        return path + ": " + content.error;
    const std::string_view text = content.text;
    for (int number = 1; tried->whole_bytes < text.size(); ++number) {
        const size_t end = text.find('\n', tried->whole_bytes);
        const std::string_view line = text.substr(tried->whole_bytes, end - tried->whole_bytes);
        const bool ended = end != std::string_view::npos;
        tried_plays read;
        const bool good = tried_plays_read(line, &read);
        if (!good && (ended || number == 1 || !line.starts_with("{")))
            return path + ": line " + std::to_string(number) + ": is no set that was tried";
        if (!ended && (goes_on || !good))  // cut off while it was written
            break;
        const std::string other = check_conditions(read.conditions, search.conditions);
        if (!other.empty())
            return std::string(path).append(" ").append(other);
        add_plays(&tried->sets, search, std::move(read));
        if (!ended)
            break;
        tried->whole_bytes = end + 1;
    }
    return {};
}

tried_plays plays_since(const lab_search &search, const tried_set &tried, const tried_set &before) {
    tried_plays plays;
    plays.conditions = search.conditions;
    plays.set = tried.set;
    plays.error = tried.error;
    plays.caps_left = tried.caps_left;
    for (size_t game = 0; game < tried.games.size(); ++game)
        for (size_t place = 0; place < tried.games[game].plays.size(); ++place) {
            const std::vector<set_play> &all = tried.games[game].plays[place];
            const size_t first =
                game < before.games.size() ? before.games[game].plays[place].size() : 0;
            if (first < all.size())
                plays.games.push_back({tried.games[game].name,
                                       place,
                                       first,
                                       {all.begin() + static_cast<long>(first), all.end()}});
        }
    return plays;
}
