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
frame_stream *stream_of(reading *now, const frame_csv &csv) {
    const std::vector<size_t> &cells = now->table.stream_cells;
    const auto name_of = [&csv](size_t cell) -> std::string {
        if (cell >= csv.count)
            return "";
        const std::string_view name = frame_trimmed(csv.cells[cell]);
        return frame_printable(name == "[NULL]" || name == "NULL" ? "" : name);
    };
    bool same = now->last != nullptr && now->last->names.size() == cells.size();
    std::vector<std::string> names;
    for (size_t i = 0; i < cells.size(); ++i) {
        if (cells[i] != frame_no_column && cells[i] >= csv.count)
            return nullptr;
        names.push_back(name_of(cells[i]));
        same = same && names.back() == now->last->names[i];
    }
    if (!same)
        now->last = frame_gathered_stream(now->all, names);
    return now->last;
}

// Afterburner: names come again where a log goes on, and only rows of values count.
bool is_value_row(reading *now, const frame_csv &csv) {
    frame_table *table = &now->table;
    const std::string_view tag = frame_trimmed(csv.cells[0]);
    if (!table->tagged)
        return true;
    if (tag == hml_names) {
        const std::string wanted = frame_plain_name(now->all->column);
        table->column = frame_no_column;
        for (size_t i = 0; i < csv.count && table->column == frame_no_column; ++i)
            if (frame_plain_name(csv.cells[i]) == wanted)
                table->column = i;
    }
    return tag == hml_values;
}

void take_value(reading *now, const frame_csv &csv, frame_stream *stream, long double value) {
    stream->values.push_back(value);
    now->last_cells = csv.count;
    note_clock(&now->clock, csv);
    long double rate = 0;
    if (now->table.unit_by_rate && now->rate_products.size() < rates_looked_at &&
        now->rate_column < csv.count && frame_parse_number(csv.cells[now->rate_column], &rate))
        now->rate_products.push_back(static_cast<double>(rate * value));
}

// The header once more, where files were put together.
bool is_header_again(const reading &now, std::string_view text) {
    return !now.table.header.empty() && frame_plain_name(text) == frame_plain_name(now.all->column);
}

void take_row(reading *now, const frame_csv &csv, size_t line) {
    const frame_table &table = now->table;
    if (csv.count == 0 || !is_value_row(now, csv))
        return;
    const bool has_cell = table.column < csv.count;
    const std::string_view text = has_cell ? frame_trimmed(csv.cells[table.column]) : "";
    long double value = 0;
    const bool is_number = frame_parse_number(text, &value);
    if (!is_number && has_cell && is_header_again(*now, text))
        return;
    frame_stream *stream = stream_of(now, csv);
    frame_tally *left_out = stream != nullptr ? &stream->left_out : &now->all->left_out;
    // The last cell of a file that ends within a row may have lost its end.
    const bool is_cut = now->is_cut && table.column + 1 == csv.count && csv.count < now->last_cells;
    if (!has_cell || stream == nullptr || is_cut)
        frame_tally_add(left_out, frame_omitted_cut_off, line);
    else if (!is_number)
        frame_tally_add(left_out, frame_omitted_no_number, line, text);
    else if (table.times && (value < 0 || value >= no_time_yet))
        frame_tally_add(left_out, frame_omitted_no_time, line);
    else if (!table.times && value <= 0)
        frame_tally_add(left_out, frame_omitted_not_positive, line);
    else
        take_value(now, csv, stream, value);
}

// MangoHud's column holds whole microseconds or milliseconds under one name: the unit is the one in
// which frames per second times their length come nearest to a second.
void settle_unit_by_rate(reading *now) {
    constexpr std::pair<const char *, double> in_a_second[] = {
        {"s", 0}, {"ms", 3}, {"us", 6}, {"ns", 9}};  // by their power of ten
    const double product = frame_median(now->rate_products);
    for (const auto &[unit, power] : in_a_second)
        if (product > 0 && std::fabs(std::log10(product) - power) < 1)
            now->all->unit = unit;
}

void begin_reading(reading *now) {
    const frame_table &table = now->table;
    frame_gathered *all = now->all;
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
    now->rate_column = find_plain(table.header, "fps");
    if (table.tagged)
        now->clock = {.column = 1, .dates = true};
    else if (table.format == "MangoHud")
        now->clock.column = find_plain(table.header, "elapsed");
}

}  // namespace

void frame_table_read(frame_source *source, const frame_table &table, frame_gathered *all) {
    reading now;
    now.table = table;
    now.all = all;
    begin_reading(&now);
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
        now.is_cut = frame_source_is_cut(*source);
        if (whole && !is_header)
            take_row(&now, csv, row_line);
        is_header = is_header && !whole;
        if (!whole && csv.pending_bytes > row_bytes_max)
            break;
    }
    if (!whole && source->error.empty())
        all->error = "line " + std::to_string(row_line) + ": a quote is not closed";
    settle_unit_by_rate(&now);
    if (now.clock.begun && !table.times)
        all->span_s = now.clock.last_s - now.clock.first_s;
}
