#include <string.h>

#include <charconv>

#include "tools/base/json.h"
#include "tools/frames/frame_formats.h"

using nlohmann::ordered_json;

namespace {

constexpr std::string_view version_key = "\"dvx_recording\"";
constexpr std::string_view interval_mark = "\"in\":\"interval\"";
constexpr std::string_view interval_word = "interval";
constexpr std::string_view value_mark = "\"us\":";
constexpr int version_known = 1;

// glibc's search by pairs of letters is what makes millions of lines quick.
const char *find_in(std::string_view text, std::string_view part) {
    return static_cast<const char *>(memmem(text.data(), text.size(), part.data(), part.size()));
}

// The value of a line in the spelling that our recorder writes.
bool scan_interval(std::string_view line, long double *us) {
    if (find_in(line, interval_mark) == nullptr || !line.ends_with('}'))
        return false;
    const char *at = find_in(line, value_mark);
    if (at == nullptr)
        return false;
    const char *line_end = line.data() + line.size();
    int64_t value = 0;
    const auto [end, error] = std::from_chars(at + value_mark.size(), line_end, value);
    if (error != std::errc() || end == line_end || (*end != ',' && *end != '}'))
        return false;
    *us = static_cast<long double>(value);
    return true;
}

enum class line_kind { passed_over, interval, broken };

// A line that mentions intervals in another spelling, or in none that is whole.
line_kind parse_interval(std::string_view line, long double *us) {
    const ordered_json object = json_read(line);
    if (object.is_discarded())
        return find_in(line, interval_mark) != nullptr ? line_kind::broken : line_kind::passed_over;
    if (!object.is_object() || object.value("in", ordered_json()) != "interval")
        return line_kind::passed_over;
    const auto value = object.find("us");
    if (value == object.end() || !value->is_number())
        return line_kind::broken;
    *us = static_cast<long double>(value->get<double>());
    return line_kind::interval;
}

std::string check_version(std::string_view line) {
    const ordered_json object = json_read(line);
    if (!object.is_object() || !object.contains("dvx_recording"))
        return {};
    const ordered_json &version = object["dvx_recording"];
    if (version == version_known)
        return {};
    return "a recording of version " + json_write(version) + ", this program reads version " +
           std::to_string(version_known);
}

}  // namespace

bool frame_is_recording(std::string_view start) {
    const std::string_view first = start.substr(0, start.find('\n'));
    return first.find(version_key) != first.npos || start.find(interval_mark) != start.npos;
}

void frame_read_recording(frame_source *source, const frame_options &options, frame_gathered *all) {
    all->format = "dvxd recording";
    all->column = "us";
    all->unit = "us";
    if (!options.column.empty() && options.column != all->column) {
        all->error = "no column '" + options.column + "'; a recording has us alone";
        return;
    }
    frame_stream *stream = frame_gathered_stream(all, {});
    for (std::string line; frame_source_next(source, &line);) {
        if (source->line == 1)
            all->error = check_version(line);
        if (!all->error.empty())
            return;
        long double us = 0;
        const line_kind kind = scan_interval(line, &us)                  ? line_kind::interval
                               : find_in(line, interval_word) != nullptr ? parse_interval(line, &us)
                                                                         : line_kind::passed_over;
        if (kind == line_kind::broken)
            frame_tally_add(&stream->left_out, frame_omission::cut_off, source->line);
        else if (kind == line_kind::interval && us > 0)
            stream->values.push_back(us);
        else if (kind == line_kind::interval)
            frame_tally_add(&stream->left_out, frame_omission::not_positive, source->line);
    }
}
