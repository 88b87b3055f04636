// Where the header of a table is, which program wrote it and which column is wanted.
#include <algorithm>
#include <charconv>
#include <iterator>

#include "tools/frames/frame_csv.h"
#include "tools/frames/frame_table.h"

namespace {

constexpr char delimiters[] = {',', ';', '\t'};

// Columns of frame intervals by their plain names without a unit, the surest first.
constexpr const char *interval_columns[][12] = {
    {"betweenpresents", "msbetweenpresents"},
    {"frametime"},
    {"frametimes", "interval", "intervals", "frameinterval", "presentinterval", "frameduration",
     "framedelta", "deltatime", "timebetweenframes", "timebetweenpresents"},
    {"us", "ms", "ns", "delta", "dt"}};
constexpr size_t no_rank = std::size(interval_columns);

struct unit_word {
    const char *word;
    const char *unit;
};

constexpr unit_word unit_words[] = {{"us", "us"}, {"usec", "us"},        {"microseconds", "us"},
                                    {"ms", "ms"}, {"msec", "ms"},        {"milliseconds", "ms"},
                                    {"ns", "ns"}, {"nanoseconds", "ns"}, {"s", "s"},
                                    {"sec", "s"}, {"seconds", "s"}};

// The words of a name, in small letters: split at what is no letter and before a capital that
// follows a small letter, or that begins the next word behind capitals.
std::vector<std::string> words_of(std::string_view name) {
    const auto is_small = [](char c) { return c >= 'a' && c <= 'z'; };
    const auto is_capital = [](char c) { return c >= 'A' && c <= 'Z'; };
    std::vector<std::string> words(1);
    for (size_t i = 0; i < name.size(); ++i) {
        const char c = name[i];
        if (name.substr(i).starts_with("\xc2\xb5") || name.substr(i).starts_with("\xce\xbc")) {
            words.back() += 'u';  // micro
            ++i;
            continue;
        }
        const bool is_break = std::string_view(" \t_-()[]./").find(c) != std::string_view::npos;
        if (is_break || (is_capital(c) && i > 0 && is_small(name[i - 1])))
            words.emplace_back();
        if (!is_break)
            words.back() += static_cast<char>(is_capital(c) ? c - 'A' + 'a' : c);
    }
    std::erase(words, "");
    return words;
}

const char *find_unit_word(const std::string &word) {
    for (const unit_word &row : unit_words)
        if (word == row.word)
            return row.unit;
    return "";
}

std::string joined(const std::vector<std::string> &words, size_t from, size_t to) {
    std::string text;
    for (size_t i = from; i < to; ++i)
        text += words[i];
    return text;
}

size_t rank_of(std::string_view name) {
    std::string base;
    frame_unit_of_name(name, &base);
    const std::string plain = frame_plain_name(name);
    for (size_t rank = 0; rank < no_rank; ++rank)
        for (const char *known : interval_columns[rank])
            if (known != nullptr && (base == known || plain == known))
                return rank;
    return no_rank;
}

bool is_number(std::string_view text) {
    long double value;
    return frame_parse_number(text, &value);
}

bool is_comment(std::string_view line) {
    line = frame_trimmed(line);
    return line.empty() || line.starts_with('#') || line.starts_with("//");
}

// A line of the head as one of the delimiters splits it.
struct candidate {
    size_t line = 0;
    char delimiter = ',';
    std::vector<std::string> cells;
    size_t column = frame_no_column;
    size_t rank = no_rank;
};

size_t find_name(const std::vector<std::string> &cells, const std::string &name) {
    const std::string plain = frame_plain_name(name);
    for (const bool exact : {true, false})
        for (size_t i = 0; i < cells.size(); ++i)
            if ((exact ? frame_trimmed(cells[i]) == name : frame_plain_name(cells[i]) == plain) &&
                !is_number(cells[i]))  // a name, not a value that looks like it
                return i;
    return frame_no_column;
}

bool has(const std::vector<std::string> &cells, std::initializer_list<const char *> names) {
    return std::all_of(names.begin(), names.end(),
                       [&](const char *name) { return find_name(cells, name) != frame_no_column; });
}

bool has_any(const std::vector<std::string> &cells, std::initializer_list<const char *> names) {
    return std::any_of(names.begin(), names.end(),
                       [&](const char *name) { return find_name(cells, name) != frame_no_column; });
}

// Columns of Perfetto's table of frames, whose times are those of their starts.
bool is_perfetto(const std::vector<std::string> &cells) {
    return has(cells, {"ts"}) &&
           has_any(cells, {"jank_type", "present_type", "surface_frame_token",
                           "display_frame_token", "layer_name", "on_time_finish", "dur"});
}

void rank_cells(candidate *found) {
    for (size_t i = 0; i < found->cells.size(); ++i) {
        const size_t rank = rank_of(found->cells[i]);
        if (rank < found->rank) {
            found->rank = rank;
            found->column = i;
        }
    }
    if (is_perfetto(found->cells)) {
        found->rank = 0;
        found->column = find_name(found->cells, "ts");
    }
}

// Every line in every way to split it, comments left out.
std::vector<candidate> split_head(const std::vector<std::string> &head) {
    std::vector<candidate> all;
    for (size_t i = 0; i < head.size(); ++i)
        for (const char delimiter : delimiters)
            if (!is_comment(head[i]))
                all.push_back(
                    {i, delimiter, frame_csv_split(head[i], delimiter), frame_no_column, no_rank});
    return all;
}

// The line that looks most like a header: many cells and no number among them, with one below it.
candidate *likely_header(std::vector<candidate> *all) {
    candidate *best = nullptr;
    for (candidate &each : *all) {
        const auto is_row = [&each](const candidate &other) {
            return other.line > each.line && other.delimiter == each.delimiter &&
                   other.cells.size() > 1 &&
                   std::any_of(other.cells.begin(), other.cells.end(), is_number);
        };
        if (each.cells.size() > (best == nullptr ? 1 : best->cells.size()) &&
            std::none_of(each.cells.begin(), each.cells.end(), is_number) &&
            std::any_of(all->begin(), all->end(), is_row))
            best = &each;
    }
    return best;
}

std::string list_columns(const std::vector<std::string> &cells) {
    std::string list;
    for (const std::string &cell : cells)
        if (!frame_trimmed(cell).empty())
            list += std::string(list.empty() ? "" : ", ").append(frame_trimmed(cell));
    return list;
}

// The column by its number from 1, of a table with a header or without.
const candidate *take_numbered(std::vector<candidate> *all, const std::string &column) {
    size_t number = 0;
    const auto [end, error] = std::from_chars(column.data(), column.data() + column.size(), number);
    if (error != std::errc() || end != column.data() + column.size() || number == 0)
        return nullptr;
    candidate *best = nullptr;
    for (candidate &each : *all) {
        rank_cells(&each);
        if (each.rank < no_rank && (best == nullptr || each.rank < best->rank))
            best = &each;
    }
    if (best == nullptr)
        best = likely_header(all);
    if (best == nullptr)
        for (candidate &each : *all)
            if (number <= each.cells.size() && is_number(each.cells[number - 1]) &&
                (best == nullptr ||
                 (each.line == best->line && each.cells.size() > best->cells.size())))
                best = &each;
    if (best == nullptr || number > best->cells.size())
        return nullptr;
    best->column = number - 1;
    return best;
}

const candidate *find_header(std::vector<candidate> *all, const std::string &column) {
    const candidate *best = nullptr;
    for (candidate &each : *all) {
        if (column.empty()) {
            rank_cells(&each);
        } else {
            each.column = find_name(each.cells, column);
            each.rank = each.column == frame_no_column ? no_rank : 0;
        }
        if (each.rank < no_rank && (best == nullptr || each.rank < best->rank))
            best = &each;
    }
    return best == nullptr && !column.empty() ? take_numbered(all, column) : best;
}

// Why a table without a column of intervals is of no use.
std::string explain_missing(const candidate *header, const std::string &column) {
    if (header == nullptr)
        return column.empty() ? "not a frame file: no format is known by what it holds"
                              : "no column '" + column + "'";
    const std::vector<std::string> &cells = header->cells;
    const std::string list = "; there are: " + list_columns(cells);
    if (!column.empty())
        return "no column '" + column + "'" + list;
    if (has_any(cells, {"Average FPS", "Avg FPS", "0.1% Min FPS", "1% Min FPS", "99th% FPS"}))
        return "a summary of a recording, not its frames" + list;
    if (has(cells, {"Draw", "Execute"}))
        return "its columns are the work of each frame, not the intervals between frames";
    return "no column of frame intervals; say which with --column" + list;
}

bool is_capframex(const std::vector<std::string> &head) {
    return std::any_of(head.begin(), head.end(), [](const std::string &line) {
        return frame_trimmed(line).starts_with("//") && line.find('=') != line.npos;
    });
}

std::string name_format(const std::vector<std::string> &head,
                        const std::vector<std::string> &cells) {
    const bool presents = has(cells, {"MsBetweenPresents"});
    if (is_perfetto(cells))
        return "Perfetto frame timeline";
    if (presents && is_capframex(head))
        return "CapFrameX";
    if (presents &&
        has_any(cells, {"Motherboard", "Base Driver Version", "EstimatedDriverLag(ms)"}))
        return "OCAT";
    if (presents && has_any(cells, {"Render Queue Depth", "Resolution", "GPU0Clk(MHz)"}))
        return "FrameView";
    if (has_any(cells, {"Application", "ProcessID", "SwapChainAddress", "PresentRuntime"})) {
        if (presents)
            return has_any(cells, {"PresentRuntime", "MsBetweenSimulationStart", "MsCPUBusy",
                                   "MsBetweenAppStart", "MsClickToPhotonLatency"})
                       ? "PresentMon 2.3"
                       : "PresentMon 1";
        if (has(cells, {"FrameTime"}))
            return "PresentMon 2.0";
    }
    if (has(cells, {"fps", "frametime"}) &&
        has_any(cells, {"elapsed", "cpu_load", "gpu_load", "gpu_temp"}))
        return "MangoHud";
    return "CSV";
}

// What the format, the column and the user say of the values.
void settle_values(frame_table *table, const frame_options &options) {
    const std::string name = table->header.empty() ? "" : table->header[table->column];
    const std::string plain = frame_plain_name(name);
    std::string base;
    table->unit = frame_unit_of_name(name, &base);
    table->times = options.difference;
    if (plain == "fps" || plain == "framerate")
        table->error = "column " + name + " holds frame rates, not intervals";
    if (table->format == "Perfetto frame timeline") {
        table->times |= plain == "ts";
        table->ordered = false;
        table->unit = plain == "ts" || plain == "dur" ? "ns" : table->unit;
    }
    if (table->format == "PresentMon 2.0" && !table->times && table->unit.empty())
        table->unit = "ms";
    table->unit_by_rate = plain == "frametime" && table->unit.empty() && !table->times;
}

void find_stream_cells(frame_table *table) {
    const bool perfetto = table->format == "Perfetto frame timeline";
    const char *const of_presents[] = {"Application", "ProcessID", "SwapChainAddress"};
    const char *const of_layers[] = {"layer_name", "upid", "process_name"};
    for (const char *name : perfetto ? of_layers : of_presents)
        table->stream_cells.push_back(find_name(table->header, name));
    if (std::count(table->stream_cells.begin(), table->stream_cells.end(), frame_no_column) ==
        static_cast<ptrdiff_t>(table->stream_cells.size()))
        table->stream_cells.clear();
}

// Afterburner: "02, DATE, " before the names, "80, DATE, " before values.
constexpr char hml_title[] = "hardware monitoring log";

bool is_hml(const std::vector<std::string> &head) {
    return std::any_of(head.begin(), head.end(), [](std::string line) {
        for (char &c : line)
            c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
        return line.find(hml_title) != line.npos;
    });
}

}  // namespace

std::string frame_plain_name(std::string_view name) {
    const std::vector<std::string> words = words_of(name);
    return joined(words, 0, words.size());
}

std::string frame_unit_of_name(std::string_view name, std::string *base) {
    const std::vector<std::string> words = words_of(name);
    *base = joined(words, 0, words.size());
    if (words.empty())
        return "";
    std::string last = find_unit_word(words.back());
    if (!last.empty() && words.size() > 1)
        *base = joined(words, 0, words.size() - 1);
    if (!last.empty())
        return last;
    if (words.size() > 1 && (words[0] == "ms" || words[0] == "us" || words[0] == "ns"))
        *base = joined(words, 1, words.size());
    return base->size() < joined(words, 0, words.size()).size() ? words[0]
           : base->starts_with("msbetween")                     ? "ms"
                                                                : "";
}

frame_table frame_table_find(const std::vector<std::string> &head, const frame_options &options) {
    frame_table table;
    std::vector<candidate> all = split_head(head);
    table.tagged = is_hml(head);
    if (table.tagged)
        std::erase_if(all,
                      [](const candidate &each) { return frame_trimmed(each.cells[0]) != "02"; });
    const candidate *header = find_header(&all, options.column);
    if (header == nullptr) {
        const candidate *names = table.tagged && !all.empty() ? &all[0] : likely_header(&all);
        table.error = explain_missing(names, options.column);
        return table;
    }
    const bool is_header = table.tagged || !is_number(header->cells[header->column]);
    table.column = header->column;
    table.skipped = header->line;
    // A column alone has nothing to be delimited from: a comma in it is a decimal one.
    table.delimiter = header->cells.size() == 1 ? ';' : header->delimiter;
    if (is_header)
        for (const std::string &cell : header->cells)
            table.header.emplace_back(frame_trimmed(cell));
    table.format = table.tagged ? "Afterburner" : name_format(head, table.header);
    settle_values(&table, options);
    if (table.tagged)
        table.unit = frame_plain_name(table.header[table.column]) == "frametime" ? "ms" : "";
    else
        find_stream_cells(&table);
    return table;
}
