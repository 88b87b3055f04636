#include "tools/recording/recording_lines.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "platform/host/json_text.h"
#include "platform/host/recording.h"

namespace {

void append_text(std::string *line, const char *key, const std::string &text) {
    line->append(",\"").append(key).append("\":");
    append_json_text(line, text.data(), text.size());
}

void append_number(std::string *line, const char *key, int64_t number) {
    line->append(",\"").append(key).append("\":").append(std::to_string(number));
}

std::string begin_line(int64_t time_ns, const std::string &thread) {
    std::string line = "{\"t\":" + std::to_string(time_ns);
    append_text(&line, "thread", thread);
    return line;
}

std::string taken_line(int64_t time_ns, recorded_kind kind) {
    std::string line = begin_line(time_ns, recorded_words[kind].thread);
    append_text(&line, "in", recorded_words[kind].word);
    return line;
}

}  // namespace

std::string recording_plain_line(int64_t time_ns, recorded_kind kind) {
    return taken_line(time_ns, kind) + "}";
}

std::string recording_report_line(int64_t time_ns, recorded_kind kind, const std::string &report) {
    std::string line = taken_line(time_ns, kind);
    int interval_us;
    if (kind == recorded_interval && sscanf(report.c_str(), "%d", &interval_us) == 1)
        append_number(&line, "us", interval_us);
    else
        append_text(&line, "report", report);
    return line + "}";
}

std::string recording_message_line(int64_t time_ns, const dvx_message &message, bool is_text) {
    std::string line = taken_line(time_ns, recorded_message);
    append_text(&line, "client",
                std::string(message.client, strnlen(message.client, sizeof(message.client))));
    append_number(&line, "code", message.code);
    if (is_text) {
        append_text(&line, "text", message.payload.text);
        return line + "}";
    }
    line += ",\"values\":[";
    for (int i = 0; i < DVX_PAYLOAD_VALUES; ++i)
        line.append(i > 0 ? "," : "").append(std::to_string(message.payload.values[i]));
    return line + "]}";
}

std::string recording_entry_line(const timeline_entry &entry, int64_t time_ns) {
    std::string line = begin_line(
        time_ns, entry.thread_name.empty() ? std::to_string(entry.thread) : entry.thread_name);
    switch (entry.kind) {
        case timeline_event:
            append_text(&line, "log", "EV : " + std::to_string(atoi(entry.text.c_str())) + "\n");
            break;
        case timeline_log:
            append_text(&line, "log", entry.text);
            append_number(&line, "priority", entry.priority);
            break;
        case timeline_hardware:
            append_text(&line, "hw", entry.text);
            break;
        case timeline_property:
            append_text(&line, "prop", entry.text);
            break;
        case timeline_service:
            append_text(&line, "said", entry.text);
            break;
        default:
            return {};
    }
    return line + "}";
}
