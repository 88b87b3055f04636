#include "platform/host/recording_lines.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "platform/host/json_text.h"

namespace {

void append_key(std::string *line, const char *key) {
    line->append(",\"").append(key).append("\":");
}

void append_text(std::string *line, const char *key, const char *text, size_t length) {
    append_key(line, key);
    append_json_text(line, text, length);
}

void append_text(std::string *line, const char *key, const std::string &text) {
    append_text(line, key, text.data(), text.size());
}

void append_number(std::string *line, const char *key, int64_t number) {
    append_key(line, key);
    *line += std::to_string(number);
}

// `texts`: values are texts and no numbers.
void append_map(std::string *line, const char *key, const std::map<std::string, std::string> &map,
                bool texts) {
    if (map.empty())
        return;
    append_key(line, key);
    char before = '{';
    for (const auto &[name, value] : map) {
        *line += before;
        append_json_text(line, name.data(), name.size());
        *line += ':';
        if (texts)
            append_json_text(line, value.data(), value.size());
        else
            *line += value;
        before = ',';
    }
    *line += '}';
}

std::string begin_line(int64_t time_ns, const char *thread) {
    std::string line = "{\"t\":";
    line += std::to_string(time_ns);
    append_text(&line, "thread", thread, strlen(thread));
    return line;
}

void append_message(std::string *line, const dvx_message &message) {
    append_text(line, "client", message.client, strnlen(message.client, DVX_CLIENT_NAME_SIZE));
    append_number(line, "code", message.code);
    if (recording_message_is_text(message)) {
        append_text(line, "text", message.payload.text, strlen(message.payload.text));
        return;
    }
    size_t count = DVX_PAYLOAD_VALUES;
    while (count > 0 && message.payload.values[count - 1] == 0)
        --count;
    *line += ",\"values\":[";
    for (size_t i = 0; i < count; ++i)
        line->append(i > 0 ? "," : "").append(std::to_string(message.payload.values[i]));
    *line += "]";
}

// A report as its number where that is all of it, else as text.
void append_report(std::string *line, recorded_kind kind, const char *report) {
    char same[16];
    const int interval_us = atoi(report);
    snprintf(same, sizeof(same), "%d\n", interval_us);
    if (kind == recorded_interval && strcmp(report, same) == 0)
        append_number(line, "us", interval_us);
    else
        append_text(line, "report", report, strlen(report));
}

}  // namespace

const recorded_kind_words recorded_words[recorded_kinds] = {
    {"dvxd", "load"},
    {"dvxd", "start"},
    {"fia", "analyser"},
    {"client_listener", "message"},
    {"kevent_monitor", "panel"},
    {"kevent_monitor", "interval"},
    {"timer", "timers"},
    {"thermal_check", "thermal"},
};

std::string recording_header_line(const recording_header &header) {
    std::string line = "{\"dvx_recording\":" + std::to_string(recording_version);
    const auto add = [&](const char *key, const std::string &text) {
        if (!text.empty())
            append_text(&line, key, text);
    };
    add("daemon", header.daemon);
    add("order", header.taken ? "taken" : "seen");
    append_number(&line, "t", header.time_ns);
    if (header.wall_ns != 0)
        append_number(&line, "wall_ns", header.wall_ns);
    add("root", header.root);
    add("device", header.device);
    if (header.since_ns != 0)
        append_number(&line, "since", header.since_ns);
    append_map(&line, "settings", header.settings, false);
    append_map(&line, "properties", header.properties, true);
    append_map(&line, "answers", header.answers, true);
    return line + "}";
}

std::string recording_happening_line(int64_t time_ns, recorded_kind kind, const void *taken,
                                     const std::string &given) {
    std::string line = begin_line(time_ns, recorded_words[kind].thread);
    append_text(&line, "in", recorded_words[kind].word);
    if (kind == recorded_message)
        append_message(&line, *static_cast<const dvx_message *>(taken));
    else if (taken != nullptr)
        append_report(&line, kind, static_cast<const char *>(taken));
    if (!given.empty())
        line += ",\"given\":[" + given + "]";
    return line + "}";
}

std::string recording_output_line(int64_t time_ns, const char *thread, const char *key,
                                  const std::string &text, const std::string &more) {
    std::string line = begin_line(time_ns, thread);
    append_text(&line, key, text);
    return line + more + "}";
}

std::string recording_number(const char *key, int64_t number) {
    std::string field;
    append_number(&field, key, number);
    return field;
}

bool recording_message_is_text(const dvx_message &message) {
    const char *bytes = message.payload.text;
    const size_t length = strnlen(bytes, DVX_PAYLOAD_SIZE);
    for (size_t i = 0; i < DVX_PAYLOAD_SIZE; ++i)
        if (i < length ? static_cast<unsigned char>(bytes[i]) < ' ' : bytes[i] != '\0')
            return false;
    return length >= 3 && length < DVX_PAYLOAD_SIZE;
}
