#include "tools/frames/frame_values.h"

#include <stdint.h>
#include <stdio.h>

#include <algorithm>
#include <charconv>
#include <cmath>

#include "tools/base/words.h"
#include "tools/frames/frame_figures.h"

namespace {

constexpr size_t sample_bytes = 24;
constexpr size_t streams_named = 3;
constexpr size_t growing_rows_min = 10;
constexpr double sampled_part = 0.8;  // of their span, which all frames together fill

struct unit_row {
    const char *name;
    double us;
};

constexpr unit_row units[] = {{"us", 1}, {"ms", 1e3}, {"ns", 1e-3}, {"s", 1e6}};

const unit_row *find_unit(const std::string &name) {
    for (const unit_row &row : units)
        if (name == row.name)
            return &row;
    return nullptr;
}

// The unit in which a median is an interval between 1 ms and 1 s: there is one at most.
const unit_row *plausible_unit(double median) {
    for (const unit_row &row : units)
        if (median * row.us >= 1e3 && median * row.us < 1e6)
            return &row;
    return nullptr;
}

constexpr const char *omission_words[] = {"without a number",
                                          "not above 0",
                                          "cut off before the value",
                                          "with Flags other than 0",
                                          "without a time (never shown or still pending)",
                                          "of slots not used yet",
                                          "not later than the row before",
                                          "longer than 35 minutes"};
static_assert(std::size(omission_words) == frame_omissions);

size_t count_left_out(const frame_tally &tally) {
    size_t count = 0;
    for (const auto &kind : tally.by)
        count += kind.count;
    return count;
}

std::string describe_left_out(const frame_tally &tally) {
    std::string text;
    for (size_t i = 0; i < frame_omissions; ++i) {
        const auto &kind = tally.by[i];
        if (kind.count == 0)
            continue;
        text += (text.empty() ? "" : "; ") + std::to_string(kind.count) + " " + omission_words[i];
        std::string where = kind.sample.empty() ? "" : "'" + kind.sample + "'";
        if (kind.line != 0)
            where += (where.empty() ? "first in line " : " in line ") + std::to_string(kind.line);
        text += where.empty() ? "" : " (" + where + ")";
    }
    return text;
}

void merge_tally(frame_tally *into, const frame_tally &other) {
    for (size_t i = 0; i < frame_omissions; ++i) {
        if (into->by[i].count == 0)
            into->by[i] = other.by[i];
        else
            into->by[i].count += other.by[i].count;
    }
}

std::string lower(std::string text) {
    for (char &c : text)
        c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    return text;
}

std::string label_of(const frame_gathered &all, const frame_stream &stream) {
    const std::vector<std::string> &names = stream.names;
    std::string label = names.empty() || names[0].empty() ? "(no name)" : names[0];
    if (names.size() > 1 && !names[1].empty())
        label += " (process " + names[1] + ")";
    if (names.size() > 2 && !names[2].empty())
        label += std::string(" ") + all.stream_word + " " + names[2];
    return label;
}

// Whether `app` names a stream: in full, its program without ".exe", or, with `part`, in part.
bool is_named(const frame_stream &stream, const std::string &app, bool part) {
    return std::any_of(stream.names.begin(), stream.names.end(), [&](const std::string &each) {
        const std::string name = lower(each);
        return name == app || name == app + ".exe" || (part && name.find(app) != name.npos);
    });
}

// The stream whose frames are meant; null with the reason.
frame_stream *choose_stream(frame_gathered *all, const std::string &app, std::string *error) {
    frame_stream *chosen = nullptr;
    const auto offer = [&](frame_stream *stream) {
        const bool named = !all->needs_name || !stream->names[0].empty();
        const bool chosen_named =
            chosen != nullptr && (!all->needs_name || !chosen->names[0].empty());
        if (chosen == nullptr || (named && !chosen_named) ||
            (named == chosen_named && stream->values.size() > chosen->values.size()))
            chosen = stream;
    };
    for (const bool part : {false, true})
        for (frame_stream &stream : all->streams)
            if (app.empty() || (!stream.names.empty() && is_named(stream, lower(app), part)))
                if (chosen == nullptr || !part || app.empty())
                    offer(&stream);
    if (chosen != nullptr)
        return chosen;
    std::string known;
    size_t named = 0;
    for (const frame_stream &stream : all->streams)
        if (!stream.names.empty() && named++ < 2 * streams_named)
            known += (known.empty() ? "" : ", ") + label_of(*all, stream);
    if (!app.empty())
        *error = known.empty() ? "it names no application to choose '" + app + "' from"
                               : "no application '" + app + "'; there are: " + known;
    return nullptr;
}

void say_choice(frame_gathered *all, const frame_stream &chosen) {
    if (all->streams.size() < 2)
        return;
    std::vector<const frame_stream *> others;
    for (const frame_stream &stream : all->streams)
        if (&stream != &chosen)
            others.push_back(&stream);
    std::stable_sort(others.begin(), others.end(), [](const auto *a, const auto *b) {
        return a->values.size() > b->values.size();
    });
    std::string text = "it mixes " + std::to_string(all->streams.size()) +
                       " sources; taken: " + label_of(*all, chosen) + "; passed over: ";
    for (size_t i = 0; i < others.size() && i < streams_named; ++i)
        text += (i == 0 ? "" : ", ") + label_of(*all, *others[i]) + " with " +
                std::to_string(others[i]->values.size()) + " rows";
    if (others.size() > streams_named)
        text += ", " + std::to_string(others.size() - streams_named) + " more";
    all->remarks.push_back(text);
}

// Makes differences of the stream's times, block by block.
std::vector<double> take_differences(frame_stream *stream, bool ordered) {
    std::vector<long double> &times = stream->values;
    if (!ordered)
        std::sort(times.begin(), times.end());
    std::vector<double> intervals;
    auto block = stream->blocks.begin();
    for (size_t i = 0; i < times.size(); ++i) {
        bool first = i == 0;
        for (; block != stream->blocks.end() && *block <= i; ++block)
            first |= *block == i;
        if (first)
            continue;
        if (times[i] > times[i - 1])
            intervals.push_back(static_cast<double>(times[i] - times[i - 1]));
        else
            frame_tally_add(&stream->left_out, frame_omission::backwards, 0);
    }
    return intervals;
}

// The unit in use; null with the reason.
const unit_row *settle_unit(const frame_gathered &all, const frame_options &options, double median,
                            frame_file *file) {
    const std::string &fixed = options.unit.empty() ? all.unit : options.unit;
    if (!fixed.empty()) {
        const unit_row *unit = find_unit(fixed);
        if (unit == nullptr)
            file->error = "no unit '" + fixed + "'; there are: us, ms, ns, s";
        return unit;
    }
    const unit_row *unit = plausible_unit(median);
    if (unit == nullptr)
        file->error = "no unit makes intervals of a median of " + short_number(median) +
                      "; say --unit, or --difference where these are times";
    else
        file->remarks.push_back(std::string("the unit is taken to be ") + unit->name +
                                ": a median of " + short_number(median) +
                                " is then between 1 ms and 1 s");
    return unit;
}

void say_growth(const std::vector<double> &values, frame_file *file) {
    if (values.size() >= growing_rows_min &&
        std::adjacent_find(values.begin(), values.end(), std::greater_equal<>()) == values.end())
        file->remarks.push_back(
            "the values grow from row to row: if they are times, say "
            "--difference");
}

void check_left_out(const frame_tally &tally, size_t rows_with_value, frame_file *file) {
    const std::string in_column = file->column.empty() ? "" : " in column " + file->column;
    const size_t without =
        file->left_out - tally.by[static_cast<size_t>(frame_omission::free_slot)].count;
    const std::string why = file->left_out_why.empty() ? "" : ": " + file->left_out_why;
    if (rows_with_value == 0)
        file->error = "no row has a value" + in_column + why;
    else if (without > rows_with_value)
        file->error = "more than half of the rows have no value" + in_column + ", " +
                      std::to_string(without) + " of " + std::to_string(without + rows_with_value) +
                      why;
    else if (file->intervals_us.empty())
        file->error = "a single frame has no interval";
}

void say_sampled(frame_file *file) {
    if (file->span_s <= 0 || file->intervals_us.size() < 2)
        return;
    double sum_us = 0;
    for (const double interval_us : file->intervals_us)
        sum_us += interval_us;
    sum_us -= file->intervals_us.front();  // it ended where the span begins
    file->sampled = sum_us < sampled_part * file->span_s * 1e6;
    if (file->sampled)
        file->remarks.push_back("rows are samples, not every frame: they add up to " +
                                short_number(sum_us / 1e6) + " s of " + short_number(file->span_s) +
                                " s");
}

}  // namespace

frame_stream *frame_gathered_stream(frame_gathered *all, const std::vector<std::string> &names) {
    std::string key;
    for (const std::string &name : names)
        key.append(name).append(1, '\0');
    const auto [found, is_new] = all->numbers.try_emplace(std::move(key), all->streams.size());
    if (is_new)
        all->streams.push_back({names, {}, {}, {}});
    return &all->streams[found->second];
}

void frame_tally_add(frame_tally *tally, frame_omission why, size_t line, std::string_view sample) {
    auto &kind = tally->by[static_cast<size_t>(why)];
    if (kind.count++ != 0)
        return;
    kind.line = line;
    kind.sample = frame_printable(sample.substr(0, sample_bytes));
}

std::string frame_printable(std::string_view text) {
    std::string printable(text);
    std::replace_if(
        printable.begin(), printable.end(),
        [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return printable;
}

std::string_view frame_trimmed(std::string_view text) {
    constexpr char blanks[] = " \t\r\n\f\v";
    const size_t start = text.find_first_not_of(blanks);
    if (start == text.npos)
        return {};
    return text.substr(start, text.find_last_not_of(blanks) - start + 1);
}

bool frame_parse_number(std::string_view text, long double *value) {
    text = frame_trimmed(text);
    if (text.starts_with('+'))
        text.remove_prefix(1);
    char point[64];
    const size_t comma = text.find(',');
    if (comma != text.npos && text.size() < sizeof(point)) {
        // A decimal comma, with points, if any, between the thousands before it.
        char *end = std::remove_copy(text.begin(), text.begin() + static_cast<ptrdiff_t>(comma),
                                     point, '.');
        *end++ = '.';
        end = std::copy(text.begin() + static_cast<ptrdiff_t>(comma) + 1, text.end(), end);
        text = {point, static_cast<size_t>(end - point)};
    }
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *value);
    return error == std::errc() && end == text.data() + text.size() && std::isfinite(*value);
}

frame_file frame_gathered_finish(frame_gathered *all, const frame_options &options) {
    frame_file file;
    file.format = all->format;
    file.column = all->column;
    file.error = all->error;
    if (!file.error.empty())
        return file;
    frame_stream nobody;
    frame_stream *chosen = choose_stream(all, options.app, &file.error);
    if (!file.error.empty())
        return file;
    if (chosen == nullptr)
        chosen = &nobody;
    else
        say_choice(all, *chosen);
    if (!chosen->names.empty())
        file.app = chosen->names[0];
    file.remarks = all->remarks;
    const size_t rows_with_value = chosen->values.size();
    const std::vector<double> values =
        all->times ? take_differences(chosen, all->ordered)
                   : std::vector<double>(chosen->values.begin(), chosen->values.end());
    const double median = frame_median(values);
    const unit_row *unit = values.empty() ? &units[0] : settle_unit(*all, options, median, &file);
    if (unit == nullptr)
        return file;
    file.unit = values.empty() ? "" : unit->name;
    if (!all->times)
        say_growth(values, &file);
    file.intervals_us.reserve(values.size());
    for (const double value : values) {
        if (value * unit->us <= INT32_MAX)
            file.intervals_us.push_back(value * unit->us);
        else
            frame_tally_add(&chosen->left_out, frame_omission::too_long, 0);
    }
    merge_tally(&chosen->left_out, all->left_out);
    file.left_out = count_left_out(chosen->left_out);
    file.left_out_why = describe_left_out(chosen->left_out);
    file.span_s = all->span_s;
    say_sampled(&file);
    check_left_out(chosen->left_out, rows_with_value, &file);
    if (!file.error.empty())
        file.intervals_us.clear();
    return file;
}
