#include "tools/lab/games.h"

#include <csv.h>
#include <stdlib.h>

#include <cmath>
#include <map>

#include "device/virtual_device.h"
#include "tools/base/files.h"
#include "tools/base/whole_file.h"

namespace {

constexpr const char *columns[] = {"name",           "shape",        "cpu_fixed_ms",
                                   "cpu_megacycles", "gpu_fixed_ms", "gpu_megacycles"};
constexpr double work_max = 10000;  // ms or megacycles a frame

// The table while it is read.
struct table {
    game_list *list;
    std::vector<std::string> names;
    std::vector<std::string> row;
    size_t line = 0;
};

void fail(table *read, const std::string &reason) {
    if (read->list->error.empty())
        read->list->error = "line " + std::to_string(read->line) + ": " + reason;
}

double number_of(table *read, const std::string &name, const std::string &text) {
    char *end = nullptr;
    const double number = strtod(text.c_str(), &end);
    if (end == text.c_str() || *end != '\0' || !(number >= 0 && number <= work_max))
        fail(read, name + " is from 0 to " + std::to_string(static_cast<int>(work_max)) +
                       ", not '" + text + "'");
    return number;
}

void read_game(table *read) {
    std::map<std::string, std::string> cells;
    for (size_t i = 0; i < read->names.size() && i < read->row.size(); ++i)
        cells[read->names[i]] = read->row[i];
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
    if (game.cpu_fixed_ms + game.cpu_megacycles + game.gpu_fixed_ms + game.gpu_megacycles <= 0)
        fail(read, "'" + game.name + "' has no work");
    if (game.name.find('/') != std::string::npos)
        fail(read, "a game's name has no '/'");
    read->list->games.push_back(game);
}

void take_cell(void *cell, size_t size, void *into) {
    static_cast<table *>(into)->row.emplace_back(static_cast<const char *>(cell), size);
}

void take_row(int, void *into) {
    table *read = static_cast<table *>(into);
    ++read->line;
    if (read->names.empty())
        read->names = read->row;
    else
        read_game(read);
    read->row.clear();
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
    game_list list;
    table read = {&list, {}, {}, 0};
    csv_parser parser;
    if (csv_init(&parser, CSV_APPEND_NULL) != 0) {
        list.error = "cannot be read";
        return list;
    }
    csv_parse(&parser, text.data(), text.size(), take_cell, take_row, &read);
    csv_fini(&parser, take_cell, take_row, &read);
    csv_free(&parser);
    if (list.error.empty() && list.games.empty())
        list.error = "has no games";
    return list;
}
