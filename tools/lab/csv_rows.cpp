#include "tools/lab/csv_rows.h"

#include <csv.h>
#include <stdlib.h>

#include <algorithm>
#include <cmath>

namespace {

struct reading {
    const std::function<void(size_t, const std::vector<std::string> &)> *take;
    std::vector<std::string> row;
    size_t line = 1;
};

void take_cell(void *cell, size_t size, void *context) {
    static_cast<reading *>(context)->row.emplace_back(static_cast<const char *>(cell), size);
}

void take_row(int ended_by, void *context) {
    reading *read = static_cast<reading *>(context);
    const bool empty = std::all_of(read->row.begin(), read->row.end(),
                                   [](const std::string &cell) { return cell.empty(); });
    if (!empty && !read->row[0].starts_with("#"))
        (*read->take)(read->line, read->row);
    read->line += ended_by != '\r' ? 1 : 0;
    read->row.clear();
}

// Semicolons, where the first line that is a table's has more of them than commas.
unsigned char delimiter_of(std::string_view text) {
    while (text.starts_with("#"))
        text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
    const std::string_view line = text.substr(0, text.find('\n'));
    return std::count(line.begin(), line.end(), ';') > std::count(line.begin(), line.end(), ',')
               ? ';'
               : ',';
}

}  // namespace

std::string csv_rows(
    std::string_view text,
    const std::function<void(size_t line, const std::vector<std::string> &)> &take) {
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    reading read = {&take, {}, 1};
    csv_parser parser;
    // Rows without a cell are told too, so that lines are counted.
    if (csv_init(&parser, CSV_APPEND_NULL | CSV_REPALL_NL) != 0)
        return "cannot be read";
    csv_set_delim(&parser, delimiter_of(text));
    csv_parse(&parser, text.data(), text.size(), take_cell, take_row, &read);
    csv_fini(&parser, take_cell, take_row, &read);
    csv_free(&parser);
    return {};
}

std::optional<double> csv_number(std::string text) {
    if (std::count(text.begin(), text.end(), ',') == 1 && text.find('.') == std::string::npos)
        std::replace(text.begin(), text.end(), ',', '.');
    char *end = nullptr;
    const double number = strtod(text.c_str(), &end);
    if (end == text.c_str() || *end != '\0' || !std::isfinite(number))
        return std::nullopt;
    return number;
}
