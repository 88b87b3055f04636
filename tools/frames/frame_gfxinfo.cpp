#include <algorithm>

#include "tools/frames/frame_csv.h"
#include "tools/frames/frame_formats.h"
#include "tools/frames/frame_table.h"

namespace {

constexpr char block_mark[] = "---PROFILEDATA---";
constexpr char process_mark[] = "Graphics info for pid ";
constexpr char usual_column[] = "IntendedVsync";
constexpr long double no_time_yet = 9223372036854775807.0L;  // 2^63 - 1

struct reading {
    frame_gathered *all = nullptr;
    std::string wanted;               // column
    std::vector<std::string> header;  // of the block; empty: outside of any
    std::vector<std::string> known;   // the header seen last
    size_t column = 0;
    size_t flags = frame_no_column;
    size_t blocks = 0;
    std::string app;
    std::string process;
    bool has_work = false;  // the old tables
    frame_stream *stream = nullptr;
};

bool is_header(std::string_view line) {
    const std::string plain = frame_plain_name(line.substr(0, line.find(',')));
    return plain == "flags" && line.find(',') != line.npos;
}

// "Draw Prepare Process Execute", or an older one without "Prepare".
bool is_work_header(std::string_view line) {
    line = frame_trimmed(line);
    return line.starts_with("Draw") && line.ends_with("Execute");
}

// "** Graphics info for pid 4242 [com.example.app] **"
void take_process(reading *dump, std::string_view line) {
    line.remove_prefix(line.find(process_mark) + sizeof(process_mark) - 1);
    const size_t open = line.find('[');
    const size_t close = line.find(']', open == line.npos ? 0 : open);
    dump->process = frame_trimmed(line.substr(0, open));
    dump->app =
        open != line.npos && close != line.npos ? line.substr(open + 1, close - open - 1) : "";
}

size_t find_column(const std::vector<std::string> &header, const std::string &wanted) {
    for (size_t i = 0; i < header.size(); ++i)
        if (frame_plain_name(header[i]) == frame_plain_name(wanted) ||
            wanted == std::to_string(i + 1))
            return i;
    return frame_no_column;
}

void begin_block(reading *dump, std::string_view line) {
    dump->header = frame_csv_split(line, ',');
    while (!dump->header.empty() && dump->header.back().empty())
        dump->header.pop_back();  // every line ends with a comma
    dump->known = dump->header;
    dump->flags = find_column(dump->header, "Flags");
    dump->column = find_column(dump->header, dump->wanted);
    if (dump->column == frame_no_column) {
        std::string list;
        for (const std::string &name : dump->header)
            list.append(list.empty() ? "" : ", ").append(name);
        dump->all->error = "no column '" + dump->wanted + "'; there are: " + list;
        return;
    }
    dump->all->column = dump->header[dump->column];
    dump->stream = dump->app.empty() && dump->process.empty()
                       ? frame_gathered_stream(dump->all, {})
                       : frame_gathered_stream(dump->all, {dump->app, dump->process});
    dump->stream->blocks.push_back(dump->stream->values.size());
    ++dump->blocks;
}

void take_row(reading *dump, std::string_view line, size_t number) {
    const std::vector<std::string> cells = frame_csv_split(line, ',');
    frame_tally *left_out = &dump->stream->left_out;
    const bool is_last = dump->column + 1 == cells.size();
    long double flags = 0;
    long double value = 0;
    // What stands last in a row that is too short may have lost its end.
    if (dump->column >= cells.size() || (is_last && cells.size() < dump->header.size()))
        frame_tally_add(left_out, frame_omission::cut_off, number);
    else if (!frame_parse_number(cells[dump->column], &value) ||
             !frame_parse_number(cells[dump->flags], &flags))
        frame_tally_add(left_out, frame_omission::no_number, number, cells[dump->column]);
    else if (flags != 0)
        frame_tally_add(left_out, frame_omission::flagged, number);
    else if (value <= 0 || value >= no_time_yet)
        frame_tally_add(left_out, frame_omission::no_time, number);
    else
        dump->stream->values.push_back(value);
}

bool is_span(const std::string &column) {
    const std::string plain = frame_plain_name(column);
    return plain.ends_with("duration") || plain == "frameinterval";
}

}  // namespace

bool frame_is_gfxinfo(const std::vector<std::string> &head) {
    return std::any_of(head.begin(), head.end(), [](const std::string &line) {
        for (const char *mark : {block_mark, process_mark,
                                 "Applications Graphics Acceleration Info", "Profile data in ms"})
            if (line.find(mark) != line.npos)
                return true;
        return is_work_header(line) ||
               (is_header(line) && frame_plain_name(line).find("intendedvsync") != line.npos);
    });
}

void frame_read_gfxinfo(frame_source *source, const frame_options &options, frame_gathered *all) {
    reading dump;
    dump.all = all;
    dump.wanted = options.column.empty() ? usual_column : options.column;
    all->format = "gfxinfo framestats";
    all->unit = "ns";
    all->ordered = true;
    for (std::string line; all->error.empty() && frame_source_next(source, &line);) {
        if (line.find(block_mark) != line.npos) {
            dump.header.clear();
        } else if (line.find(process_mark) != line.npos) {
            dump.header.clear();
            take_process(&dump, line);
        } else if (is_header(line)) {
            begin_block(&dump, line);
        } else if (is_work_header(line)) {
            dump.has_work = true;
        } else if (!dump.header.empty() && !frame_trimmed(line).empty()) {
            take_row(&dump, line, source->line);
        }
    }
    all->times = options.difference || !is_span(all->column);
    if (!all->error.empty() || !source->error.empty())
        return;
    if (dump.known.empty())
        all->error = dump.has_work ? "its tables are the work of each frame (Draw, Prepare, "
                                     "Process, Execute), not the intervals between frames; "
                                     "dumpsys gfxinfo PACKAGE framestats has those"
                                   : "dumpsys gfxinfo without frames; dumpsys gfxinfo PACKAGE "
                                     "framestats has them";
    else if (dump.blocks > 1)
        all->remarks.push_back("frames of " + std::to_string(dump.blocks) +
                               " blocks, with no interval from one to the next");
}
