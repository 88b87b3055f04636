#include "tools/recording/happening_words.h"

#include <stdlib.h>
#include <string.h>

#include <algorithm>

#include "device/hardware_conf.h"
#include "device/service_words.h"
#include "tools/base/words.h"
#include "tools/recording/messages.h"

namespace {

constexpr char blanks[] = " \t\r";
constexpr int64_t ms_ns = 1000000;
constexpr int64_t time_max_ms = 1000000000;  // eleven days
constexpr int64_t frames_max = 10000000;     // two days of 60 frames per second

// The daemon's threads that can be refused.
constexpr const char *thread_names[] = {"thermal_check",  "fia",    "client_listener",
                                        "kevent_monitor", "policy", "timer"};

// The character behind a backslash; `at` moves to its last letter.
char read_escape(const std::string &text, size_t *at) {
    switch (text[*at]) {
        case 'n':
            return '\n';
        case 't':
            return '\t';
        case 'r':
            return '\r';
        case 'x': {
            const char value =
                static_cast<char>(strtol(text.substr(*at + 1, 2).c_str(), nullptr, 16));
            *at = std::min(*at + 2, text.size() - 1);
            return value;
        }
        default:
            return text[*at];
    }
}

bool read_number(const std::string &text, int64_t *number) {
    char *end = nullptr;
    *number = strtoll(text.c_str(), &end, 10);
    return !text.empty() && *end == '\0';
}

// Each reader gets the words behind the first and answers what is wrong.

using words = std::vector<happening_word>;

bool is_library(const std::string &name) {
    return std::any_of(device_calls_known.begin(), device_calls_known.end(),
                       [&](const device_call &call) { return name == call.library; });
}

bool is_thread(const std::string &name) {
    return std::any_of(std::begin(thread_names), std::end(thread_names),
                       [&](const char *thread) { return name == thread; });
}

bool is_service(const std::string &socket) {
    return std::any_of(std::begin(device_services), std::end(device_services),
                       [&](const device_service &service) { return socket == service.socket; });
}

std::string read_word_message(const message_word &word, const words &rest, happening *given) {
    std::vector<std::string> texts;
    for (const auto &each : rest)
        texts.push_back(each.text);
    payload_words payload;
    std::string error = payload_take(word.payload, texts, &payload);
    if (error.empty())
        *given = make_message_happening(make_word_message(word, payload));
    return error;
}

std::string read_raw(const words &rest, happening *given) {
    int64_t code = 0;
    if (rest.size() < 2 || !read_number(rest[1].text, &code))
        return "raw wants CLIENT CODE and numbers or --text T";
    const char *client = rest[0].text.c_str();
    if (rest[0].text.size() >= DVX_CLIENT_NAME_SIZE || code != static_cast<int32_t>(code) ||
        rest.size() > DVX_PAYLOAD_VALUES + 2)
        return "raw wants a client of at most 19 characters, a code and at most 64 numbers of 32 "
               "bits";
    if (rest.size() == 4 && rest[2].text == "--text") {
        *given = make_message_happening(
            make_text_message(client, static_cast<int32_t>(code), rest[3].text));
        return {};
    }
    std::vector<int32_t> values;
    for (size_t i = 2; i < rest.size(); ++i) {
        int64_t value;
        if (!read_number(rest[i].text, &value) || value != static_cast<int32_t>(value))
            return "'" + rest[i].text + "' is not a number of 32 bits";
        values.push_back(static_cast<int32_t>(value));
    }
    *given = make_message_happening(make_message(client, static_cast<int32_t>(code), values));
    return {};
}

std::string read_panel(const words &rest, happening *given) {
    if (rest.size() != 1 || (rest[0].text != "on" && rest[0].text != "off"))
        return "panel wants on or off";
    *given = make_panel_happening(rest[0].text == "on");
    return {};
}

std::string read_frames_words(const words &rest, happening *given) {
    given->kind = happening_kind::frames;
    size_t at = 1;
    for (; at < rest.size() && rest[at].text != "--rate"; ++at) {
        int64_t interval_us;
        if (!read_number(rest[at].text, &interval_us) ||
            interval_us != static_cast<int32_t>(interval_us))
            return "'" + rest[at].text + "' is not an interval in microseconds";
        given->intervals_us.push_back(static_cast<int32_t>(interval_us));
    }
    const bool rated = at + 2 == rest.size() && check_speed(rest[at + 1].text, "").empty();
    if (rated)
        given->rate = parse_speed(rest[at + 1].text, "");
    if (rest.empty() || !read_number(rest[0].text, &given->count) || given->count < 1 ||
        given->count > frames_max || given->intervals_us.empty() || (at < rest.size() && !rated))
        return "frames wants a COUNT of at most 10000000, intervals in microseconds, and may have "
               "--rate N";
    return {};
}

std::string read_report(const words &rest, happening *given) {
    if (rest.size() != 2 || (rest[0].text != "panel" && rest[0].text != "interval"))
        return "report wants panel or interval, and a text";
    given->kind = rest[0].text == "panel" ? happening_kind::panel : happening_kind::interval;
    given->value = rest[1].text;
    return {};
}

std::string read_pair(happening_kind kind, const words &rest, happening *given) {
    if (rest.empty() || rest.size() > 2)
        return "wants NAME and VALUE";
    given->kind = kind;
    given->name = rest[0].text;
    given->value = rest.size() == 2 ? rest[1].text : "";
    return {};
}

std::string read_prop(const words &rest, happening *given) {
    return read_pair(happening_kind::property, rest, given);
}

std::string read_answer(const words &rest, happening *given) {
    const std::string error = read_pair(happening_kind::answer, rest, given);
    if (!error.empty() || rest.size() != 2)
        return "answer wants NAME and VALUE";
    return names_call(given->name.substr(0, given->name.find('.')))
               ? ""
               : "no library call is named '" + given->name + "'";
}

std::string read_service(const words &rest, happening *given) {
    const std::string error = read_pair(happening_kind::service, rest, given);
    const std::string &state = given->value;
    if (!error.empty() || !is_service(given->name) ||
        (state != "up" && state != "down" && state != "hung"))
        return "service wants a SOCKET and up, down or hung";
    given->state = state == "up"     ? service_state::up
                   : state == "down" ? service_state::down
                                     : service_state::hung;
    return {};
}

std::string read_without(const words &rest, happening *given) {
    if (rest.size() != 1 || (!names_call(rest[0].text) && !is_library(rest[0].text)))
        return "without wants a library or an entry point of one";
    given->kind = happening_kind::missing;
    given->name = rest[0].text;
    return {};
}

std::string read_failing(const words &rest, happening *given) {
    const std::string name = rest.empty() ? "" : rest[0].text;
    const bool numbered = name == "allocation";
    given->kind = happening_kind::failure;
    given->name = name;
    given->value = rest.size() == 2 ? rest[1].text : "";
    if ((numbered && rest.size() == 2 && read_number(given->value, &given->count) &&
         given->count >= 1) ||
        (name == "thread" && rest.size() == 2 && is_thread(given->value)) ||
        ((name == "socket" || name == "listen") && rest.size() == 1))
        return {};
    return "failing wants thread NAME, allocation N, socket or listen";
}

std::string read_start(const words &rest, happening *given) {
    given->kind = happening_kind::start;
    return rest.empty() ? "" : "start stands alone";
}

struct reader_row {
    const char *word;
    std::string (*read)(const words &rest, happening *given);
};

constexpr reader_row readers[] = {
    {"raw", read_raw},         {"panel", read_panel},     {"frames", read_frames_words},
    {"report", read_report},   {"prop", read_prop},       {"answer", read_answer},
    {"service", read_service}, {"without", read_without}, {"failing", read_failing},
    {"start", read_start},
};

}  // namespace

bool split_words(const std::string &text, std::vector<happening_word> *tokens) {
    size_t at = text.find_first_not_of(blanks);
    while (at != std::string::npos) {
        happening_word next = {"", text[at] == '"'};
        if (next.quoted) {
            for (++at; at < text.size() && text[at] != '"'; ++at)
                next.text +=
                    text[at] == '\\' && at + 1 < text.size() ? read_escape(text, &++at) : text[at];
            if (at >= text.size())
                return false;
            ++at;
        } else {
            const size_t end = text.find_first_of(blanks, at);
            next.text = text.substr(at, end - at);
            at = end;
        }
        tokens->push_back(next);
        at = at < text.size() ? text.find_first_not_of(blanks, at) : std::string::npos;
    }
    return true;
}

bool names_call(const std::string &name) {
    return std::any_of(device_calls_known.begin(), device_calls_known.end(),
                       [&](const device_call &call) { return name == call.name; });
}

std::string read_happening(const std::string &text, happening *given) {
    words tokens;
    if (!split_words(text, &tokens))
        return "a quote is not closed";
    if (tokens.empty())
        return {};
    const std::string first = tokens[0].text;
    const words rest(tokens.begin() + 1, tokens.end());
    if (first[0] == '+') {
        given->kind = happening_kind::time;
        int64_t time_ms = -1;
        const bool known = rest.empty() && read_number(first.substr(1), &time_ms);
        if (!known || time_ms < 0 || time_ms > time_max_ms)
            return "'" + first + "' is not a time in milliseconds, at most 1000000000";
        given->time_ns = time_ms * ms_ns;
        return {};
    }
    for (const reader_row &row : readers)
        if (first == row.word)
            return row.read(rest, given);
    for (const message_word &word : message_words)
        if (first == word.word)
            return read_word_message(word, rest, given);
    return "unknown word '" + first + "'";
}
