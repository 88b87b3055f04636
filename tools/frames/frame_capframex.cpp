#include <algorithm>
#include <nlohmann/json.hpp>

#include "tools/frames/frame_formats.h"
#include "tools/frames/frame_table.h"

namespace {

constexpr size_t document_bytes_max = 256 << 20;
constexpr size_t depth_max = 64;
constexpr char usual_column[] = "MsBetweenPresents";

// Takes one array of numbers out of each run and lets the rest, sensors above all, pass by. The
// operations are the library's: each is told of one thing in the text, true goes on.
struct run_reader : nlohmann::json_sax<nlohmann::json> {
    std::string wanted;  // plain name of the column
    frame_stream *stream = nullptr;
    std::string column;              // as the file spells it
    std::vector<std::string> known;  // columns that there are
    std::vector<std::string> path;   // keys from the outside; "" of an array's elements
    std::string program;
    size_t runs = 0;
    size_t error_at = 0;
    bool difference = false;  // values are times
    bool wanted_now = false;  // the array that is open is of the wanted column

    explicit run_reader(const std::string &name) : wanted(frame_plain_name(name)) {}

    // Runs[i].CaptureData.COLUMN[i]
    bool in_column() const {
        return path.size() == 5 && frame_plain_name(path[0]) == "runs" &&
               frame_plain_name(path[2]) == "capturedata";
    }
    bool is_wanted() const { return wanted_now && path.size() == 5; }
    bool open() {
        path.emplace_back();
        return path.size() <= depth_max;
    }

    bool take(long double value) {
        if (!is_wanted())
            return true;
        if (value > 0 || difference)
            stream->values.push_back(value);
        else
            frame_tally_add(&stream->left_out, frame_omission::not_positive, 0);
        return true;
    }
    bool leave_out(const std::string &sample) {
        if (is_wanted())
            frame_tally_add(&stream->left_out, frame_omission::no_number, 0, sample);
        return true;
    }

    bool null() override { return leave_out("null"); }
    bool boolean(bool value) override { return leave_out(value ? "true" : "false"); }
    bool number_integer(number_integer_t value) override {
        return take(static_cast<long double>(value));
    }
    bool number_unsigned(number_unsigned_t value) override {
        return take(static_cast<long double>(value));
    }
    bool number_float(number_float_t value, const string_t &) override {
        return take(static_cast<long double>(value));
    }
    bool string(string_t &value) override {
        if (path.size() == 2 && path[0] == "Info" && path[1] == "ProcessName")
            program = value;
        return leave_out(value);
    }
    bool binary(binary_t &) override { return true; }
    bool start_object(size_t) override { return open(); }
    bool key(string_t &name) override {
        path.back() = name;
        return true;
    }
    bool end_object() override {
        path.pop_back();
        return true;
    }
    bool start_array(size_t) override {
        if (!open())
            return false;
        if (!in_column())
            return true;
        wanted_now = frame_plain_name(path[3]) == wanted;
        if (std::find(known.begin(), known.end(), path[3]) == known.end())
            known.push_back(path[3]);
        if (wanted_now) {
            column = path[3];
            stream->blocks.push_back(stream->values.size());
            ++runs;
        }
        return true;
    }
    bool end_array() override {
        wanted_now = wanted_now && path.size() > 5;
        return end_object();
    }
    bool parse_error(size_t at, const std::string &, const nlohmann::json::exception &) override {
        error_at = at;
        return false;
    }
};

std::string explain_column(const run_reader &reader, const std::string &column) {
    if (reader.known.empty())
        return "JSON, but neither a CapFrameX recording, with Runs of CaptureData, nor one of ours";
    std::string list;
    for (const std::string &name : reader.known)
        list.append(list.empty() ? "" : ", ").append(name);
    return "no column '" + column + "'; there are: " + list;
}

}  // namespace

void frame_read_capframex(frame_source *source, const frame_options &options, frame_gathered *all) {
    all->format = "CapFrameX JSON";
    all->ordered = true;
    all->times = options.difference;
    std::string text;
    if (!frame_source_rest(source, document_bytes_max, &text))
        return;
    frame_stream gathered;
    const std::string column = options.column.empty() ? usual_column : options.column;
    run_reader reader(column);
    reader.stream = &gathered;
    reader.difference = options.difference;
    if (!nlohmann::json::sax_parse(text, &reader)) {
        const auto end =
            text.begin() + static_cast<ptrdiff_t>(std::min(reader.error_at, text.size()));
        all->error = reader.path.size() > depth_max
                         ? "JSON that is nested too deep"
                         : "line " + std::to_string(std::count(text.begin(), end, '\n') + 1) +
                               ": broken JSON";
        return;
    }
    if (reader.runs == 0) {
        all->error = explain_column(reader, column);
        return;
    }
    std::string base;
    all->column = reader.column;
    all->unit = frame_unit_of_name(reader.column, &base);
    if (reader.runs > 1)
        all->remarks.push_back(std::to_string(reader.runs) + " runs, one after the other");
    frame_stream *stream = frame_gathered_stream(
        all, reader.program.empty() ? std::vector<std::string>()
                                    : std::vector<std::string>{reader.program});
    *stream = {stream->names, std::move(gathered.values), std::move(gathered.blocks),
               gathered.left_out};
}
