#include "tools/frames/frame_table.h"

#include <stdio.h>
#include <time.h>

#include <cmath>
#include <utility>

#include "tools/frames/frame_csv.h"
#include "tools/frames/frame_figures.h"

namespace {

constexpr size_t row_bytes_max = 1 << 20;
constexpr size_t rates_looked_at = 10000;
constexpr long double no_time_yet = 9223372036854775807.0L;  // 2^63 - 1, where none is known
constexpr char hml_values[] = "80";
constexpr char hml_names[] = "02";

// The rows' own clock: MangoHud's column of nanoseconds, Afterburner's dates.
struct row_clock {
    size_t column = frame_no_column;
    bool dates = false;
    bool begun = false;
    double first_s = 0;
    double last_s = 0;
};

struct reading {
    frame_table table;
    frame_gathered *all = nullptr;
    frame_stream *last = nullptr;  // the stream of the row before
    bool is_cut = false;           // the file ends within the present row
    size_t last_cells = 0;         // of the row before that had a value
    size_t rate_column = frame_no_column;
    std::vector<double> rate_products;  // frames per second by their length
    row_clock clock;
};

size_t find_plain(const std::vector<std::string> &header, const char *name) {
    for (size_t i = 0; i < header.size(); ++i)
        if (frame_plain_name(header[i]) == name)
            return i;
    return frame_no_column;
}

// "27-12-2018 17:41:08" in seconds of its own calendar.
bool parse_date(const std::string &text, double *seconds) {
    tm date = {};
    if (sscanf(text.c_str(), "%2d-%2d-%4d %2d:%2d:%2d", &date.tm_mday, &date.tm_mon, &date.tm_year,
               &date.tm_hour, &date.tm_min, &date.tm_sec) != 6)
        return false;
    date.tm_mon -= 1;
    date.tm_year -= 1900;
    *seconds = static_cast<double>(timegm(&date));
    return true;
}

void note_clock(row_clock *clock, const frame_csv &csv) {
    double now_s = 0;
    long double ns = 0;
    if (clock->column >= csv.count)
        return;
    if (clock->dates) {
        if (!parse_date(csv.cells[clock->column], &now_s))
            return;
    } else if (frame_parse_number(csv.cells[clock->column], &ns)) {
        now_s = static_cast<double>(ns) / 1e9;
    } else {
        return;
    }
    if (!clock->begun)
        clock->first_s = now_s;
    clock->begun = true;
    clock->last_s = now_s;
}

// The stream that a row belongs to; null where it says that of no stream.
frame_stream *stream_of(reading *rows, const frame_csv &csv) {
    const std::vector<size_t> &cells = rows->table.stream_cells;
    const auto name_of = [&csv](size_t cell) -> std::string {
        if (cell >= csv.count)
            return "";
        const std::string_view name = frame_trimmed(csv.cells[cell]);
        return frame_printable(name == "[NULL]" || name == "NULL" ? "" : name);
    };
    bool same = rows->last != nullptr && rows->last->names.size() == cells.size();
    std::vector<std::string> names;
    for (size_t i = 0; i < cells.size(); ++i) {
        if (cells[i] != frame_no_column && cells[i] >= csv.count)
            return nullptr;
        names.push_back(name_of(cells[i]));
        same = same && names.back() == rows->last->names[i];
    }
    if (!same)
        rows->last = frame_gathered_stream(rows->all, names);
    return rows->last;
}

// Afterburner: names come again where a log goes on, and only rows of values count.
bool is_value_row(reading *rows, const frame_csv &csv) {
    frame_table *table = &rows->table;
    const std::string_view tag = frame_trimmed(csv.cells[0]);
    if (!table->tagged)
        return true;
    if (tag == hml_names) {
        const std::string wanted = frame_plain_name(rows->all->column);
        table->column = frame_no_column;
        for (size_t i = 0; i < csv.count && table->column == frame_no_column; ++i)
            if (frame_plain_name(csv.cells[i]) == wanted)
                table->column = i;
    }
    return tag == hml_values;
}

void take_value(reading *rows, const frame_csv &csv, frame_stream *stream, long double value) {
    stream->values.push_back(value);
    rows->last_cells = csv.count;
    note_clock(&rows->clock, csv);
    long double rate = 0;
    if (rows->table.unit_by_rate && rows->rate_products.size() < rates_looked_at &&
        rows->rate_column < csv.count && frame_parse_number(csv.cells[rows->rate_column], &rate))
        rows->rate_products.push_back(static_cast<double>(rate * value));
}

// The header once more, where files were put together.
bool is_header_again(const reading &rows, std::string_view text) {
    return !rows.table.header.empty() &&
           frame_plain_name(text) == frame_plain_name(rows.all->column);
}

void take_row(reading *rows, const frame_csv &csv, size_t line) {
    const frame_table &table = rows->table;
    if (csv.count == 0 || !is_value_row(rows, csv))
        return;
    const bool has_cell = table.column < csv.count;
    const std::string_view text = has_cell ? frame_trimmed(csv.cells[table.column]) : "";
    long double value = 0;
    const bool is_number = frame_parse_number(text, &value);
    if (!is_number && has_cell && is_header_again(*rows, text))
        return;
    frame_stream *stream = stream_of(rows, csv);
    frame_tally *left_out = stream != nullptr ? &stream->left_out : &rows->all->left_out;
    // The last cell of a file that ends within a row may have lost its end.
    const bool is_cut =
        rows->is_cut && table.column + 1 == csv.count && csv.count < rows->last_cells;
    if (!has_cell || stream == nullptr || is_cut)
        frame_tally_add(left_out, frame_omission::cut_off, line);
    else if (!is_number)
        frame_tally_add(left_out, frame_omission::no_number, line, text);
    else if (table.times && (value < 0 || value >= no_time_yet))
        frame_tally_add(left_out, frame_omission::no_time, line);
    else if (!table.times && value <= 0)
        frame_tally_add(left_out, frame_omission::not_positive, line);
    else
        take_value(rows, csv, stream, value);
}

// MangoHud's column holds whole microseconds or milliseconds under one name: the unit is the one in
// which frames per second times their length come nearest to a second.
void settle_unit_by_rate(reading *rows) {
    constexpr std::pair<const char *, double> in_a_second[] = {
        {"s", 0}, {"ms", 3}, {"us", 6}, {"ns", 9}};  // by their power of ten
    const double product = frame_median(rows->rate_products);
    for (const auto &[unit, power] : in_a_second)
        if (product > 0 && std::fabs(std::log10(product) - power) < 1)
            rows->all->unit = unit;
}

void begin_reading(reading *rows) {
    const frame_table &table = rows->table;
    frame_gathered *all = rows->all;
    all->format = table.format;
    all->column =
        table.header.empty() ? std::to_string(table.column + 1) : table.header[table.column];
    all->unit = table.unit;
    all->times = table.times;
    all->ordered = table.ordered;
    all->stream_word = "swap chain";
    all->error = table.error;
    if (table.format == "Perfetto frame timeline") {
        all->needs_name = !table.stream_cells.empty();
        all->stream_word = "of";
    }
    rows->rate_column = find_plain(table.header, "fps");
    if (table.tagged)
        rows->clock = {.column = 1, .dates = true};
    else if (table.format == "MangoHud")
        rows->clock.column = find_plain(table.header, "elapsed");
}

}  // namespace

void frame_table_read(frame_source *source, const frame_table &table, frame_gathered *all) {
    reading rows;
    rows.table = table;
    rows.all = all;
    begin_reading(&rows);
    frame_csv csv(table.delimiter);
    bool whole = true;
    bool is_header = !table.header.empty();  // a row of its own, which may have several lines
    size_t row_line = 0;
    for (std::string line; frame_source_next(source, &line);) {
        const std::string_view text = frame_trimmed(line);
        if (source->line <= table.skipped ||
            (whole && (text.empty() || text[0] == '#' || text.starts_with("//"))))
            continue;
        row_line = whole ? source->line : row_line;
        whole = frame_csv_feed(&csv, line);
        rows.is_cut = frame_source_is_cut(*source);
        if (whole && !is_header)
            take_row(&rows, csv, row_line);
        is_header = is_header && !whole;
        if (!whole && csv.pending_bytes > row_bytes_max)
            break;
    }
    if (!whole && source->error.empty())
        all->error = "line " + std::to_string(row_line) + ": a quote is not closed";
    settle_unit_by_rate(&rows);
    if (rows.clock.begun && !table.times)
        all->span_s = rows.clock.last_s - rows.clock.first_s;
}
