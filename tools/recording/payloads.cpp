#include "tools/recording/payloads.h"

#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <charconv>

namespace {

constexpr int32_t fps_highest = 240;
constexpr size_t text_max = DVX_PAYLOAD_SIZE - 1;

constexpr number_word automode_words[] = {
    {"off", 0}, {"on", 1}, {"touch", 2}, {"resume", 3}, {"exit", 4}};
constexpr number_word lpm_words[] = {{"off", 0}};

constexpr payload_parameter state_parameter = {
    .name = "STATE", .help = "on or off", .flag = &payload_words::on, .required = true};

constexpr payload_parameter state_parameters[] = {state_parameter};
constexpr payload_parameter number_parameters[] = {
    {.name = "N", .help = "The number", .number = &payload_words::number, .required = true}};
constexpr payload_parameter duration_parameters[] = {{.name = "MS",
                                                      .help = "Milliseconds, 1 or more",
                                                      .number = &payload_words::number,
                                                      .required = true,
                                                      .least = 1}};
constexpr payload_parameter text_parameters[] = {{.name = "NAME",
                                                  .help = "The name, at most 255 characters",
                                                  .text = &payload_words::text,
                                                  .required = true,
                                                  .longest = text_max}};
constexpr payload_parameter game_parameters[] = {
    state_parameter,
    {.name = "--fps",
     .help = "Frame rate of the game tuner, 1 to 240",
     .number = &payload_words::fps,
     .least = 1,
     .most = fps_highest},
    {.name = "--tuner",
     .help = "Game-tuner mode; 1: under the tuner",
     .number = &payload_words::tuner},
    {.name = "--ofvalue", .help = "Of-value", .number = &payload_words::ofvalue}};
constexpr payload_parameter home_parameters[] = {
    {.name = "STATE",
     .help = "0 left, 1 shown, 2 with live wallpaper",
     .number = &payload_words::number,
     .required = true,
     .least = 0,
     .most = 2},
    {.name = "NAME",
     .help = "The home activity, at most 253 characters",
     .text = &payload_words::text,
     .longest = text_max - sizeof("0")}};
constexpr payload_parameter automode_parameters[] = {
    {.name = "COMMAND",
     .help = "off, on, touch, resume, exit or a number",
     .number = &payload_words::number,
     .required = true,
     .words = automode_words}};
constexpr payload_parameter lpm_parameters[] = {
    {.name = "LEVEL",
     .help = "off, 1 or 2 (extreme)",
     .number = &payload_words::number,
     .required = true,
     .least = 0,
     .most = 2,
     .words = lpm_words},
    {.name = "--cap", .help = "Cap the frame rate at 30 (level 2)", .flag = &payload_words::cap}};

struct payload_row {
    payload_kind kind;
    std::span<const payload_parameter> parameters;
    void (*write)(const payload_words &given, dvx_message *message);
    void (*read)(const dvx_message &message, payload_words *given);
    std::string (*say)(const payload_words &given);
};

void write_none(const payload_words &, dvx_message *) {}

void write_state(const payload_words &given, dvx_message *message) {
    message->payload.values[0] = given.on ? 1 : 0;
}

void write_number(const payload_words &given, dvx_message *message) {
    message->payload.values[0] = given.number;
}

void write_text(const payload_words &given, dvx_message *message) {
    dvx_message_set_text(message, given.text.c_str());
}

void write_game(const payload_words &given, dvx_message *message) {
    int32_t *values = message->payload.values;
    values[0] = given.tuner;
    values[1] = given.on ? 1 : 0;
    values[2] = given.fps;
    values[3] = given.ofvalue;
}

void write_home(const payload_words &given, dvx_message *message) {
    const std::string name = given.text.empty() ? "" : ":" + given.text;
    dvx_message_set_text(message, (std::to_string(given.number) + name).c_str());
}

void write_lpm(const payload_words &given, dvx_message *message) {
    int32_t *values = message->payload.values;
    values[0] = given.number != 0 ? 1 : 0;
    values[1] = given.number;
    values[2] = given.cap ? 1 : 0;
}

std::string text_of(const dvx_message &message) {
    return {message.payload.text, strnlen(message.payload.text, DVX_PAYLOAD_SIZE)};
}

void read_none(const dvx_message &, payload_words *) {}

void read_state(const dvx_message &message, payload_words *given) {
    given->on = message.payload.values[0] != 0;
}

void read_number(const dvx_message &message, payload_words *given) {
    given->number = message.payload.values[0];
}

void read_text(const dvx_message &message, payload_words *given) {
    given->text = text_of(message);
}

void read_game(const dvx_message &message, payload_words *given) {
    const int32_t *values = message.payload.values;
    given->tuner = values[0];
    given->on = values[1] != 0;
    given->fps = values[2];
    given->ofvalue = values[3];
}

void read_home(const dvx_message &message, payload_words *given) {
    const std::string text = text_of(message);
    const size_t colon = text.find(':');
    given->number = atoi(text.c_str());
    given->text = colon != std::string::npos ? text.substr(colon + 1) : "";
}

void read_lpm(const dvx_message &message, payload_words *given) {
    given->number = message.payload.values[1];
    given->cap = message.payload.values[2] != 0;
}

std::string say_none(const payload_words &) {
    return {};
}

std::string say_state(const payload_words &given) {
    return given.on ? " on" : " off";
}

std::string say_number(const payload_words &given) {
    return " " + std::to_string(given.number);
}

std::string say_text(const payload_words &given) {
    return " " + given.text;
}

// An option that says no more than its default is left out.
std::string say_option(const char *option, int32_t value, int32_t usual) {
    return value == usual ? "" : std::string(option).append(std::to_string(value));
}

std::string say_game(const payload_words &given) {
    const payload_words usual;
    return say_state(given) + say_option(" --fps ", given.fps, usual.fps) +
           say_option(" --tuner ", given.tuner, usual.tuner) +
           say_option(" --ofvalue ", given.ofvalue, usual.ofvalue);
}

std::string say_home(const payload_words &given) {
    return say_number(given) + (given.text.empty() ? "" : " " + given.text);
}

std::string say_automode(const payload_words &given) {
    for (const number_word &row : automode_words)
        if (row.number == given.number)
            return std::string(" ") + row.word;
    return say_number(given);
}

std::string say_lpm(const payload_words &given) {
    return (given.number == 0 ? " off" : say_number(given)) + (given.cap ? " --cap" : "");
}

constexpr payload_row rows[] = {
    {payload_kind::none, {}, write_none, read_none, say_none},
    {payload_kind::state, state_parameters, write_state, read_state, say_state},
    {payload_kind::number, number_parameters, write_number, read_number, say_number},
    {payload_kind::duration, duration_parameters, write_number, read_number, say_number},
    {payload_kind::text, text_parameters, write_text, read_text, say_text},
    {payload_kind::game, game_parameters, write_game, read_game, say_game},
    {payload_kind::home, home_parameters, write_home, read_home, say_home},
    {payload_kind::automode, automode_parameters, write_number, read_number, say_automode},
    {payload_kind::lpm, lpm_parameters, write_lpm, read_lpm, say_lpm},
};

const payload_row &row_of(payload_kind kind) {
    return rows[static_cast<size_t>(kind)];
}
static_assert(rows[static_cast<size_t>(payload_kind::lpm)].kind == payload_kind::lpm,
              "a kind is its own row");

std::string take_state(const payload_parameter &parameter, const std::string &word,
                       payload_words *given) {
    given->*parameter.flag = word == "on";
    if (word == "on" || word == "off")
        return {};
    return std::string(parameter.name) + ": " + word + " not in {on,off}";
}

std::string take_number(const payload_parameter &parameter, const std::string &word,
                        payload_words *given) {
    int32_t &number = given->*parameter.number;
    for (const number_word &row : parameter.words)
        if (word == row.word) {
            number = row.number;
            return {};
        }
    const char *end = word.data() + word.size();
    const auto [rest, error] = std::from_chars(word.data(), end, number);
    if (error != std::errc() || rest != end)
        return std::string(parameter.name) + ": " + word + " is no number of 32 bits";
    if (number >= parameter.least && number <= parameter.most)
        return {};
    return std::string(parameter.name) + ": Value " + word + " not in range " +
           std::to_string(parameter.least) + " to " + std::to_string(parameter.most);
}

std::string take_text(const payload_parameter &parameter, const std::string &word,
                      payload_words *given) {
    given->*parameter.text = word;
    if (word.size() <= parameter.longest)
        return {};
    return std::string(parameter.name) + ": '" + word + "' has more than " +
           std::to_string(parameter.longest) + " characters";
}

std::string take_word(const payload_parameter &parameter, const std::string &word,
                      payload_words *given) {
    if (parameter.flag != nullptr)
        return take_state(parameter, word, given);
    return parameter.number != nullptr ? take_number(parameter, word, given)
                                       : take_text(parameter, word, given);
}

}  // namespace

bool payload_is_option(const payload_parameter &parameter) {
    return strncmp(parameter.name, "--", 2) == 0;
}

std::span<const payload_parameter> payload_parameters(payload_kind kind) {
    return row_of(kind).parameters;
}

std::string payload_take(payload_kind kind, const std::vector<std::string> &words,
                         payload_words *given) {
    const std::span<const payload_parameter> parameters = payload_parameters(kind);
    std::string wrong;
    auto place = parameters.begin();  // of the next word without a name
    for (size_t at = 0; at < words.size() && wrong.empty(); ++at) {
        const std::string &word = words[at];
        const auto option = std::find_if(
            parameters.begin(), parameters.end(),
            [&](const auto &each) { return payload_is_option(each) && word == each.name; });
        place = std::find_if_not(place, parameters.end(), payload_is_option);
        if (option != parameters.end() && option->flag != nullptr)
            given->*option->flag = true;
        else if (option != parameters.end())
            wrong = at + 1 < words.size() ? take_word(*option, words[++at], given)
                                          : word + " wants a value";
        else if (place != parameters.end())
            wrong = take_word(*place++, word, given);
        else
            wrong = "unknown word '" + word + "'";
    }
    for (; place != parameters.end() && wrong.empty(); ++place)
        if (place->required)
            wrong = std::string(place->name) + " is required";
    return wrong;
}

bool payload_is_text(payload_kind kind) {
    return kind == payload_kind::text || kind == payload_kind::home;
}

void payload_write(payload_kind kind, const payload_words &given, dvx_message *message) {
    row_of(kind).write(given, message);
}

payload_words payload_read(payload_kind kind, const dvx_message &message) {
    payload_words given;
    row_of(kind).read(message, &given);
    return given;
}

std::string payload_say(payload_kind kind, const payload_words &given) {
    return row_of(kind).say(given);
}
