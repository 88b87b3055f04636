#include "platform/host/recording.h"

#include <dlfcn.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <map>
#include <string>

#include "platform/host/json_text.h"
#include "platform/host/recording_file.h"
#include "platform/host/recording_lines.h"
#include "platform/host/standard_files.h"
#include "platform/host/turns.h"
#include "platform/recording.h"

namespace {

// The happening that is under way, and what was answered last under each name.
struct happening_state {
    recorded_kind kind;
    const void *taken;
    int64_t begin_ns;
    int questions;
    std::string given;  // answers, as elements of an array
    std::string out;    // whole lines
    std::string connected;
    std::map<std::string, std::string> properties;
    std::map<std::string, std::string> answers;
};

constinit struct {
    pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;  // held by whoever is at a happening
    happening_state *now = nullptr;                    // under `lock`; made when the file is opened
} recording;

thread_local bool at_happening = false;

int64_t read_clock_ns(clockid_t clock) {
    timespec now;
    clock_gettime(clock, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
}

// The first thing that the daemon does.
bool open_file() {
    standard_files_take_up();
    const char *path = getenv("DVXD_RECORD");
    if (path == nullptr || path[0] == '\0' || !recording_file_open(path))
        return false;
    recording.now = new happening_state{};
    recording_header header;
    header.daemon = DVX_VERSION;
    header.taken = true;
    header.time_ns = read_clock_ns(CLOCK_MONOTONIC);
    header.wall_ns = read_clock_ns(CLOCK_REALTIME);
    const char *root = getenv("DVXD_ROOT");
    header.root = root != nullptr ? root : "";
    recording_file_write(recording_header_line(header) + "\n");
    recording_observe_library(RTLD_DEFAULT);
    return true;
}

// Whether what the calling thread does belongs to the happening under way.
bool is_at_happening() {
    return at_happening || turns_is_other();
}

void note_output(const char *name, const char *text, const std::string &more = {}) {
    if (!recording_is_on())
        return;
    const bool inside = is_at_happening();
    char own_name[16] = "";
    if (!inside)
        pthread_getname_np(pthread_self(), own_name, sizeof(own_name));
    const std::string line =
        recording_output_line(read_clock_ns(CLOCK_MONOTONIC), inside ? turns_thread() : own_name,
                              name, text, inside ? more : more + ",\"aside\":true") +
        "\n";
    if (inside)
        recording.now->out += line;
    else
        recording_file_write(line);
}

// Counts a question; its number where somebody is at a happening, else -1.
int count_question() {
    return recording_is_on() && is_at_happening() ? recording.now->questions++ : -1;
}

void note_given(int question, const char *word, const std::string &rest) {
    std::string *given = &recording.now->given;
    *given += given->empty() ? "[" : ",[";
    given->append(std::to_string(question)).append(",\"").append(word).append("\"").append(rest);
    *given += ']';
}

std::string numbered(int64_t number) {
    return std::string(",").append(std::to_string(number));
}

std::string quoted(const char *text) {
    std::string line = ",";
    append_json_text(&line, text, strlen(text));
    return line;
}

}  // namespace

bool recording_is_on(void) {
    static const bool on = open_file();
    return on;
}

void recording_begin(recorded_kind kind, const void *taken) {
    if (!recording_is_on())
        return;
    pthread_mutex_lock(&recording.lock);
    at_happening = true;
    turns_set_thread(recorded_words[kind].thread);
    happening_state *now = recording.now;
    now->kind = kind;
    now->taken = taken;
    now->begin_ns = read_clock_ns(CLOCK_MONOTONIC);
    now->questions = 0;
    now->given.clear();
    now->out.clear();
}

void recording_end(bool happened) {
    if (!recording_is_on())
        return;
    turns_let_other_run();
    const happening_state &now = *recording.now;
    if (happened || !now.out.empty()) {
        recording_file_write(
            recording_happening_line(now.begin_ns, now.kind, now.taken, now.given) + "\n" +
            now.out);
    }
    at_happening = false;
    pthread_mutex_unlock(&recording.lock);
}

void recording_note_log(int priority, const char *tag, const char *text) {
    // How an event travels is not noted: what its callbacks do is.
    if (!recording_is_on() || strncmp(text, "Callback for ", strlen("Callback for ")) == 0)
        return;
    std::string more = recording_number("priority", priority) + ",\"tag\":";
    append_json_text(&more, tag, strlen(tag));
    note_output("log", text, more);
}

void recording_note_property(const char *name, const char *value) {
    if (!recording_is_on())
        return;
    if (is_at_happening())
        recording.now->properties[name] = value;
    note_output("prop", std::string(name).append(" ").append(value).c_str());
}

void recording_note_call(const char *call) {
    note_output("hw", call);
}

void recording_note_message(const void *bytes, size_t size) {
    if (!recording_is_on() || !is_at_happening())
        return;
    std::string hex = ",\"bytes\":\"";
    for (size_t i = 0; i < size; ++i) {
        char digits[3];
        snprintf(digits, sizeof(digits), "%02x", static_cast<const unsigned char *>(bytes)[i]);
        hex += digits;
    }
    note_output("service", recording.now->connected.c_str(), hex + "\"");
}

void recording_note_clock(int64_t now_ns) {
    const int question = count_question();
    if (question >= 0)
        note_given(question, "clock", numbered(now_ns - recording.now->begin_ns));
}

void recording_note_lookup(const char *name, const char *value) {
    const int question = count_question();
    if (question < 0 || recording.now->properties[name] == value)
        return;
    recording.now->properties[name] = value;
    note_given(question, "prop", quoted(name) + quoted(value));
}

void recording_note_answer(const char *name, const char *text) {
    const int question = count_question();
    if (question < 0)
        return;
    const auto last = recording.now->answers.find(name);
    const bool known = last != recording.now->answers.end();
    if (text == nullptr && known) {
        recording.now->answers.erase(last);
        note_given(question, "answer", quoted(name) + ",null");
    } else if (text != nullptr && (!known || last->second != text)) {
        recording.now->answers[name] = text;
        note_given(question, "answer", quoted(name) + quoted(text));
    }
}

void recording_note_library(const char *name, bool found) {
    const int question = count_question();
    if (question >= 0 && !found)
        note_given(question, "missing", quoted(name));
}

void recording_note_connect(const char *socket, int error) {
    const int question = count_question();
    if (question < 0)
        return;
    recording.now->connected = socket;
    if (error != 0)
        note_given(question, "connect", quoted(socket) + numbered(error));
}

void recording_note_sent(long result, size_t size) {
    const int question = count_question();
    if (question >= 0 && result != static_cast<long>(size))
        note_given(question, "send", numbered(result));
}

void recording_observe_library(void *library) {
    using observer =
        void (*)(void (*note_call)(const char *), void (*note_answer)(const char *, const char *));
    if (recording.now == nullptr)
        return;
    const observer observe = reinterpret_cast<observer>(dlsym(library, "standin_observe"));
    if (observe != nullptr)
        observe(recording_note_call, recording_note_answer);
}
