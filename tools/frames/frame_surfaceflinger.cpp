#include <charconv>

#include "tools/frames/frame_formats.h"

namespace {

constexpr const char *columns[] = {"desiredPresentTime", "actualPresentTime", "frameReadyTime"};
constexpr size_t actual_column = 1;

// The whole numbers of a line, or none where anything else stands in it.
std::vector<int64_t> numbers_of(std::string_view line) {
    std::vector<int64_t> numbers;
    while (!(line = frame_trimmed(line)).empty()) {
        int64_t number = 0;
        const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
        line.remove_prefix(static_cast<size_t>(end - line.data()));
        if (error != std::errc() || (!line.empty() && line[0] != ' ' && line[0] != '\t'))
            return {};
        numbers.push_back(number);
    }
    return numbers;
}

bool is_refresh_period(const std::vector<int64_t> &numbers) {
    return numbers.size() == 1 && numbers[0] >= 1000000 && numbers[0] < 1000000000;
}

bool find_column(const std::string &wanted, size_t *column) {
    *column = actual_column;
    bool found = wanted.empty();
    for (size_t i = 0; i < std::size(columns); ++i)
        if (wanted == columns[i] || wanted == std::to_string(i + 1)) {
            *column = i;
            found = true;
        }
    return found;
}

void take_row(const std::vector<int64_t> &row, size_t column, size_t line, frame_stream *stream) {
    if (row.size() != std::size(columns))
        frame_tally_add(&stream->left_out, frame_omission::cut_off, line);
    else if (row[0] == 0 && row[1] == 0 && row[2] == 0)
        frame_tally_add(&stream->left_out, frame_omission::free_slot, line);
    else if (row[column] <= 0 || row[column] == INT64_MAX)
        frame_tally_add(&stream->left_out, frame_omission::no_time, line);
    else
        stream->values.push_back(static_cast<long double>(row[column]));
}

}  // namespace

bool frame_is_surfaceflinger(const std::vector<std::string> &head) {
    bool period = false;
    size_t lines = 0;
    for (const std::string &line : head) {
        if (frame_trimmed(line).empty())
            continue;
        const std::vector<int64_t> numbers = numbers_of(line);
        if (period && numbers.size() == std::size(columns))
            return true;
        period = is_refresh_period(numbers);
        ++lines;
    }
    // Of a layer that it does not know it says no more than the period.
    return period && lines == 1;
}

void frame_read_surfaceflinger(frame_source *source, const frame_options &options,
                               frame_gathered *all) {
    size_t column;
    all->format = "SurfaceFlinger latency";
    all->unit = "ns";
    all->times = true;
    all->ordered = true;
    if (!find_column(options.column, &column)) {
        all->error = "no column '" + options.column + "'; there are: " + columns[0] + ", " +
                     columns[1] + ", " + columns[2];
        return;
    }
    all->column = columns[column];
    frame_stream *stream = frame_gathered_stream(all, {});
    bool begun = false;
    for (std::string line; frame_source_next(source, &line);) {
        const std::vector<int64_t> numbers = numbers_of(line);
        if (is_refresh_period(numbers)) {
            stream->blocks.push_back(stream->values.size());
            begun = true;
        } else if (begun && !frame_trimmed(line).empty()) {
            take_row(numbers, column, source->line, stream);
        }
    }
    const auto &left_out = stream->left_out.by;
    if (stream->values.empty() &&
        left_out[static_cast<size_t>(frame_omission::cut_off)].count == 0 &&
        left_out[static_cast<size_t>(frame_omission::no_time)].count == 0)
        all->error = "no frames, every row is zero: the layer's name is wrong, or it drew nothing";
}
