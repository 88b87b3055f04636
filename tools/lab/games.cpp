#include "tools/lab/games.h"

#include <map>

#include "device/virtual_device.h"
#include "tools/base/files.h"
#include "tools/base/whole_file.h"
#include "tools/base/words.h"
#include "tools/lab/csv_rows.h"

namespace {

constexpr const char *columns[] = {"name",           "shape",        "cpu_fixed_ms",
                                   "cpu_megacycles", "gpu_fixed_ms", "gpu_megacycles"};
constexpr double work_max = 10000;  // ms or megacycles a frame

// The table while it is read.
struct table {
    game_list list;
    std::vector<std::string> names;  // of its columns
    size_t line = 0;
};

void fail(table *read, const std::string &reason) {
    if (read->list.error.empty())
        read->list.error = "line " + std::to_string(read->line) + ": " + reason;
}

double number_of(table *read, const std::string &name, const std::string &text) {
    const auto number = csv_number(text);
    if (!number || *number < 0 || *number > work_max)
        fail(read, name + " is from 0 to " + short_number(work_max) + ", not '" + text + "'");
    return number.value_or(0);
}

void read_game(table *read, const std::vector<std::string> &row) {
    std::map<std::string, std::string> cells;
    for (size_t i = 0; i < read->names.size() && i < row.size(); ++i)
        cells[read->names[i]] = row[i];
    for (const char *column : columns)
        if (cells[column].empty())
            return fail(read, std::string("has no ") + column);
    game_work game;
    game.name = cells["name"];
    game.serial = cells["shape"] == "serial";
    if (!game.serial && cells["shape"] != "parallel")
        return fail(read, "shape is parallel or serial, not '" + cells["shape"] + "'");
    game.cpu_fixed_ms = number_of(read, "cpu_fixed_ms", cells["cpu_fixed_ms"]);
    game.cpu_megacycles = number_of(read, "cpu_megacycles", cells["cpu_megacycles"]);
    game.gpu_fixed_ms = number_of(read, "gpu_fixed_ms", cells["gpu_fixed_ms"]);
    game.gpu_megacycles = number_of(read, "gpu_megacycles", cells["gpu_megacycles"]);
    if (!cells["limit_fps"].empty())
        game.limit_fps = number_of(read, "limit_fps", cells["limit_fps"]);
    if (!cells["told"].empty() && cells["told"] != "yes" && cells["told"] != "no")
        fail(read, "told is yes or no, not '" + cells["told"] + "'");
    game.told = cells["told"] != "no";
    if (game.cpu_fixed_ms + game.cpu_megacycles + game.gpu_fixed_ms + game.gpu_megacycles <= 0)
        fail(read, "'" + game.name + "' has no work");
    if (game.name.find('/') != std::string::npos)
        fail(read, "a game's name has no '/'");
    for (const game_work &other : read->list.games)
        if (other.name == game.name)
            fail(read, "'" + game.name + "' stands there twice");
    read->list.games.push_back(game);
}

}  // namespace

std::string games_path() {
    return sibling_program("../share/dvxd/games.csv");
}

game_list games_read(const std::string &path) {
    const whole_file content = whole_file_open(path);
    if (content.error.empty())
        return games_read_text(content.text);
    game_list list;
    list.error = content.error;
    return list;
}

game_list games_read_text(std::string_view text) {
    table read;
    const std::string wrong = csv_rows(text, [&](size_t line, const auto &row) {
        read.line = line;
        if (read.names.empty())
            read.names = row;
        else
            read_game(&read, row);
    });
    if (read.list.error.empty())
        read.list.error = !wrong.empty() ? wrong : read.list.games.empty() ? "has no games" : "";
    return read.list;
}
