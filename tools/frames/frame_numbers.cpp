#include "tools/frames/frame_formats.h"

#include <algorithm>

namespace {

bool is_comment(std::string_view line) {
    return line.empty() || line.starts_with('#') || line.starts_with("//");
}

// A number, without what a comment behind it says.
std::string_view without_comment(std::string_view line) {
    return frame_trimmed(line.substr(0, line.find('#')));
}

// A number alone in its line; a comma would make cells of it.
bool parse_line(std::string_view line, long double *value) {
    const std::string_view text = without_comment(line);
    return text.find(',') == text.npos && frame_parse_number(text, value);
}

// A heading over numbers that are no times.
bool is_rate_heading(std::string_view text) {
    std::string plain(text);
    std::transform(plain.begin(), plain.end(), plain.begin(), tolower);
    return plain.ends_with("fps") || plain.ends_with("framerate");
}

}  // namespace

bool frame_is_numbers(const std::vector<std::string> &head) {
    size_t numbers = 0;
    size_t others = 0;
    for (const std::string &line : head) {
        long double value;
        if (!is_comment(frame_trimmed(line)))
            ++(parse_line(line, &value) ? numbers : others);
    }
    return numbers >= others;  // comments alone may go on beyond the head
}

void frame_read_numbers(frame_source *source, const frame_options &options, frame_gathered *all) {
    all->format = "one number a line";
    all->times = options.difference;
    all->ordered = true;
    if (!options.column.empty() && options.column != "1") {
        all->error = "no column '" + options.column + "': it holds one number a line";
        return;
    }
    frame_stream *stream = frame_gathered_stream(all, {});
    for (std::string line; frame_source_next(source, &line);) {
        const std::string_view text = frame_trimmed(line);
        long double value;
        if (is_comment(text))
            continue;
        if (!parse_line(text, &value) && is_rate_heading(text)) {
            all->error = "column " + std::string(text) + " holds frame rates, not intervals";
            return;
        }
        if (!parse_line(text, &value))
            frame_tally_add(&stream->left_out, frame_omission::no_number, source->line, text);
        else if (value <= 0 && !options.difference)
            frame_tally_add(&stream->left_out, frame_omission::not_positive, source->line);
        else
            stream->values.push_back(value);
    }
}
