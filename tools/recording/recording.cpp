#include "tools/recording/recording.h"

#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <utility>

#include "device/service_words.h"
#include "platform/host/json_text.h"
#include "tools/base/json.h"
#include "tools/recording/messages.h"

using json = nlohmann::ordered_json;

namespace {

constexpr size_t line_max = size_t{1} << 20;
constexpr int64_t time_max_ns = INT64_MAX / 2;  // differences of two stay in 64 bits
constexpr int64_t length_max_ns = int64_t{366} * 24 * 3600 * 1000000000;

const std::map<std::string, answer_kind> answer_words = {
    {"clock", answer_kind::clock},     {"prop", answer_kind::property},
    {"answer", answer_kind::library},  {"missing", answer_kind::missing},
    {"connect", answer_kind::connect}, {"send", answer_kind::sent},
};

std::string text_of(const json &value) {
    return bytes_of_json_text(value.get<std::string>());
}

// [QUESTION, KIND, ...]: the last elements are a name, a value, a number, as the kind has them.
platform_answer read_answer(const json &given) {
    platform_answer answer;
    answer.question = json_integer<int>(given.at(0));
    answer.kind = answer_words.at(given.at(1).get<std::string>());
    const json &last = given.back();
    if (given.size() > 3 || answer.kind == answer_kind::missing)
        answer.name = text_of(given.at(2));
    if (last.is_number())
        answer.number = json_integer<int64_t>(last);
    else if (last.is_string() && given.size() > 3)
        answer.value = text_of(last);
    if (answer.kind == answer_kind::library)
        answer.number = last.is_null() ? 0 : 1;
    return answer;
}

std::vector<int32_t> values_of(const json &list) {
    std::vector<int32_t> values;
    for (const json &value : list)
        values.push_back(json_integer<int32_t>(value));
    return values;
}

dvx_message read_message(const json &line) {
    const std::string client = text_of(line.at("client"));
    const int32_t code = json_integer<int32_t>(line.at("code"));
    return line.contains("text") ? make_text_message(client.c_str(), code, text_of(line.at("text")))
                                 : make_message(client.c_str(), code, values_of(line.at("values")));
}

happening_kind kind_of(const std::string &word) {
    for (int kind = 0; kind < recorded_kinds; ++kind)
        if (word == recorded_words[kind].word)
            return static_cast<happening_kind>(kind);
    throw std::out_of_range(word);
}

void read_happening_line(const json &line, recording_line *read) {
    happening taken;
    read->is_happening = true;
    taken.kind = kind_of(line.at("in").get<std::string>());
    taken.time_ns = read->time_ns;
    if (taken.kind == happening_kind::message)
        taken.message = std::make_shared<const dvx_message>(read_message(line));
    if (line.contains("report"))
        taken.value = text_of(line.at("report"));
    if (line.contains("us"))
        taken.interval_us = json_integer<int32_t>(line.at("us"));
    if (line.contains("given"))
        for (const json &given : line.at("given"))
            taken.answers.push_back(read_answer(given));
    read->taken = std::move(taken);
}

// A message to another service: who it is for, and what it says.
std::string describe_sent(const std::string &socket, const std::string &hex) {
    std::string bytes;
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    for (const device_service &service : device_services)
        if (socket == service.socket)
            return describe_service_message(service, bytes.data(), bytes.size());
    return socket + "  a message of " + std::to_string(bytes.size()) + " bytes";
}

void read_output_line(const json &line, recording_line *read) {
    read->is_happening = false;
    read->aside = line.value("aside", false);
    if (line.contains("log")) {
        read->came = make_log_record(read->time_ns, text_of(line.at("log")));
        read->came.priority = json_integer<int>(line.value("priority", json(0)));
    } else if (line.contains("hw")) {
        read->came = make_call_record(read->time_ns, text_of(line.at("hw")));
    } else if (line.contains("prop")) {
        read->came = make_property_record(read->time_ns, text_of(line.at("prop")));
    } else if (line.contains("said")) {
        read->came = make_service_record(read->time_ns, text_of(line.at("said")));
    } else if (line.contains("service")) {
        read->came = make_service_record(
            read->time_ns,
            describe_sent(text_of(line.at("service")), line.value("bytes", std::string())));
    } else {
        read->came = {};
        read->came.kind = record_kind::note;
        read->came.time_ns = read->time_ns;
    }
    read->came.thread_name = text_of(line.value("thread", json("")));
}

// Nanoseconds; 0 where there are none.
int64_t time_of(const json &line, const char *key) {
    return json_integer(line.value(key, json(0)), -time_max_ns, time_max_ns);
}

void read_header_fields(const json &line, recording_header *header) {
    header->daemon = line.value("daemon", "");
    header->device = line.value("device", "");
    header->root = line.value("root", "");
    header->taken = line.value("order", "") == "taken";
    header->since_ns = time_of(line, "since");
    header->time_ns = time_of(line, "t");
    header->wall_ns = time_of(line, "wall_ns");
    const auto read_map = [&](const char *key, std::map<std::string, std::string> *into) {
        const json map = line.value(key, json::object());
        for (const auto &[name, value] : map.items())
            (*into)[name] = value.is_string() ? value.get<std::string>() : json_write(value);
    };
    read_map("settings", &header->settings);
    read_map("properties", &header->properties);
    read_map("answers", &header->answers);
}

bool fail(recording *file, const std::string &reason) {
    file->error = "line " + std::to_string(file->line) + ": " + reason;
    return false;
}

// The next whole line, without its end. False at the end of the file or at one that is too long.
bool take_line(recording *file, std::string_view *line) {
    if (file->at >= file->content.text.size())
        return false;
    const char *begin = file->content.text.data() + file->at;
    const size_t left = file->content.text.size() - file->at;
    const void *end = memchr(begin, '\n', std::min(left, line_max));
    ++file->line;
    if (end == nullptr && left >= line_max)
        return fail(file, "is longer than a recording's lines are");
    if (end == nullptr) {
        file->at = file->content.text.size();
        file->remarks.push_back("the recording was cut off in line " + std::to_string(file->line) +
                                "; it is good up to the one before");
        return false;
    }
    const size_t length = static_cast<size_t>(static_cast<const char *>(end) - begin);
    *line = std::string_view(begin, length);
    file->at += length + 1;
    return true;
}

// An interval as the daemon notes it, letter for letter: nearly every line is one.
bool scan_interval(std::string_view line, recording_line *read, int32_t *interval_us) {
    constexpr std::string_view head = "{\"t\":";
    constexpr std::string_view middle =
        ",\"thread\":\"kevent_monitor\",\"in\":\"interval\",\"us\":";
    if (!line.starts_with(head))
        return false;
    const char *end = line.data() + line.size();
    const auto [time_end, time_error] =
        std::from_chars(line.data() + head.size(), end, read->time_ns);
    const std::string_view rest(time_end, static_cast<size_t>(end - time_end));
    if (time_error != std::errc() || std::abs(read->time_ns) > time_max_ns ||
        !rest.starts_with(middle))
        return false;
    const auto [value_end, value_error] =
        std::from_chars(rest.data() + middle.size(), end, *interval_us);
    return value_error == std::errc() && end - value_end == 1 && *value_end == '}';
}

}  // namespace

recording recording_open(const std::string &path) {
    return recording_of(whole_file_open(path));
}

recording recording_of(whole_file content) {
    recording file;
    file.content = std::move(content);
    file.error = file.content.error;
    std::string_view line;
    if (!file.error.empty())
        return file;
    if (!take_line(&file, &line)) {
        if (file.error.empty())
            file.error = "line 1: is no recording's first line";
        return file;
    }
    const std::string wrong = recording_read_header(line, &file.header);
    if (!wrong.empty())
        fail(&file, wrong);
    return file;
}

std::string recording_read_header(std::string_view line, recording_header *header) {
    const json parsed = json_read(line);
    if (!parsed.is_object() || !parsed.contains("dvx_recording"))
        return "is no recording's first line";
    if (parsed.at("dvx_recording") != recording_version)
        return "the format's version is " + json_write(parsed.at("dvx_recording")) +
               ", this program reads " + std::to_string(recording_version);
    try {
        read_header_fields(parsed, header);
    } catch (const std::exception &) {
        return "is no recording's first line";
    }
    return {};
}

int64_t recording_wall_ahead_ns(const recording_header &header) {
    const int64_t ahead_ns = header.wall_ns - header.time_ns;
    return header.wall_ns != 0 && std::abs(ahead_ns) <= time_max_ns ? ahead_ns : 0;
}

bool recording_read_line(std::string_view line, recording_line *read) {
    read->aside = false;
    int32_t interval_us;
    if (scan_interval(line, read, &interval_us)) {
        read->is_happening = true;
        read->taken.kind = happening_kind::interval;
        read->taken.time_ns = read->time_ns;
        read->taken.interval_us = interval_us;
        read->taken.value.clear();
        read->taken.message = nullptr;
        read->taken.answers.clear();
        return true;
    }
    try {
        const json parsed = json_read(line);
        if (!parsed.is_object() || !parsed.contains("t"))
            return false;
        read->time_ns = time_of(parsed, "t");
        if (parsed.contains("in"))
            read_happening_line(parsed, read);
        else
            read_output_line(parsed, read);
    } catch (const std::exception &) {
        return false;
    }
    return true;
}

void recording_follow_answers(recording *file, recording_line *line) {
    for (const platform_answer &answer : line->taken.answers) {
        if (!line->is_happening || answer.kind != answer_kind::library)
            continue;
        if (answer.number != 0)
            file->answers[answer.name] = answer.value;
        else
            file->answers.erase(answer.name);
    }
    if (line->is_happening || line->came.kind != record_kind::call || !file->header.taken)
        return;
    // As the stand-in libraries look for their answer: 0 where the device's file has none.
    const record &call = line->came;
    const std::string first = call.values.empty() ? "" : call.values[0];
    auto found = file->answers.find(call.name + "." + first);
    if (found == file->answers.end())
        found = file->answers.find(call.name);
    line->came.answer = found != file->answers.end() ? atoi(found->second.c_str()) : 0;
}

bool recording_next(recording *file, recording_line *read) {
    std::string_view line;
    if (!file->error.empty() || !take_line(file, &line))
        return false;
    read->number = file->line;
    if (!recording_read_line(line, read))
        return fail(file, "is no line of a recording");
    if (!std::exchange(file->begun, true)) {
        file->first_ns = read->time_ns;
        file->answers = file->header.answers;
    }
    if (std::abs(read->time_ns - file->first_ns) > length_max_ns)
        return fail(file, "is more than a year from the first one");
    recording_follow_answers(file, read);
    if (!read->is_happening)
        return true;
    if (read->time_ns < file->last_ns)
        return fail(file, "time runs backwards");
    file->last_ns = read->time_ns;
    return true;
}

std::string recording_line_of(const happening &taken) {
    const std::string report =
        taken.interval_us ? std::to_string(*taken.interval_us) + "\n" : taken.value;
    const bool reports =
        taken.kind == happening_kind::interval || taken.kind == happening_kind::panel;
    return recording_happening_line(taken.time_ns, static_cast<recorded_kind>(taken.kind),
                                    taken.message != nullptr ? taken.message.get()
                                    : reports ? static_cast<const void *>(report.c_str())
                                              : nullptr);
}

std::string recording_line_of(const record &came, int64_t time_ns) {
    constexpr const char *keys[] = {nullptr, "log", "log", "hw", "said", "prop", nullptr, nullptr};
    const char *key = keys[static_cast<size_t>(came.kind)];
    if (key == nullptr)
        return {};
    const std::string thread = record_thread(came);
    if (came.kind == record_kind::event)
        return recording_output_line(time_ns, thread.c_str(), key,
                                     log_line_text(log_line::event_raised, came.event) + "\n");
    return recording_output_line(
        time_ns, thread.c_str(), key, came.text,
        came.kind == record_kind::log ? recording_number("priority", came.priority) : "");
}
