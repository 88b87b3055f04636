#include "tools/recording/payloads.h"

#include <stdlib.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>

namespace {

constexpr int32_t fps_highest = 240;
constexpr size_t text_max = DVX_PAYLOAD_SIZE - 1;

using words_by_number = std::map<std::string, int32_t>;

const words_by_number automode_words = {
    {"off", 0}, {"on", 1}, {"touch", 2}, {"resume", 3}, {"exit", 4}};

struct payload_row {
    payload_kind kind;
    void (*add_options)(CLI::App *command, payload_words *given);
    void (*write)(const payload_words &given, dvx_message *message);
    void (*read)(const dvx_message &message, payload_words *given);
    std::string (*say)(const payload_words &given);
};

// Turns one of the words into its number; any other text stays.
CLI::Validator word_to_number(const words_by_number &words) {
    return CLI::Validator(
        [words](std::string &text) -> std::string {
            const auto word = words.find(text);
            if (word != words.end())
                text = std::to_string(word->second);
            return {};
        },
        "");
}

// Turns "on" and "off" into what a flag's value is; CLI11 would take "yes" and "1" as well.
CLI::Option *add_state(CLI::App *command, payload_words *given) {
    return command
        ->add_option_function<std::string>(
            "STATE", [given](const std::string &state) { given->on = state == "on"; }, "on or off")
        ->required()
        ->check(CLI::IsMember({"on", "off"}));
}

void add_none(CLI::App *, payload_words *) {}

void add_switch(CLI::App *command, payload_words *given) {
    add_state(command, given);
}

void add_number(CLI::App *command, payload_words *given) {
    command->add_option("N", given->number, "The number")->required();
}

void add_duration(CLI::App *command, payload_words *given) {
    command->add_option("MS", given->number, "Milliseconds, 1 or more")
        ->required()
        ->check(CLI::Range(1, INT32_MAX));
}

void add_text(CLI::App *command, payload_words *given) {
    command->add_option("NAME", given->text, "The name, at most 255 characters")
        ->required()
        ->check(at_most(text_max));
}

void add_game(CLI::App *command, payload_words *given) {
    add_state(command, given);
    command->add_option("--fps", given->fps, "Frame rate of the game tuner, 1 to 240")
        ->check(CLI::Range(1, fps_highest))
        ->capture_default_str();
    command->add_option("--tuner", given->tuner, "Game-tuner mode; 1: under the tuner")
        ->capture_default_str();
    command->add_option("--ofvalue", given->ofvalue, "Of-value")->capture_default_str();
}

void add_home(CLI::App *command, payload_words *given) {
    command->add_option("STATE", given->number, "0 left, 1 shown, 2 with live wallpaper")
        ->required()
        ->check(CLI::Range(0, 2));
    command->add_option("NAME", given->text, "The home activity, at most 253 characters")
        ->check(at_most(text_max - sizeof("0")));
}

void add_automode(CLI::App *command, payload_words *given) {
    command->add_option("COMMAND", given->number, "off, on, touch, resume, exit or a number")
        ->required()
        ->transform(word_to_number(automode_words));
}

void add_lpm(CLI::App *command, payload_words *given) {
    command->add_option("LEVEL", given->number, "off, 1 or 2 (extreme)")
        ->required()
        ->transform(word_to_number({{"off", 0}}))
        ->check(CLI::Range(0, 2));
    command->add_flag("--cap", given->cap, "Cap the frame rate at 30 (level 2)");
}

void write_none(const payload_words &, dvx_message *) {}

void write_switch(const payload_words &given, dvx_message *message) {
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

void read_switch(const dvx_message &message, payload_words *given) {
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

std::string say_switch(const payload_words &given) {
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
    return say_switch(given) + say_option(" --fps ", given.fps, usual.fps) +
           say_option(" --tuner ", given.tuner, usual.tuner) +
           say_option(" --ofvalue ", given.ofvalue, usual.ofvalue);
}

std::string say_home(const payload_words &given) {
    return say_number(given) + (given.text.empty() ? "" : " " + given.text);
}

std::string say_automode(const payload_words &given) {
    for (const auto &[word, number] : automode_words)
        if (number == given.number)
            return " " + word;
    return say_number(given);
}

std::string say_lpm(const payload_words &given) {
    return (given.number == 0 ? " off" : say_number(given)) + (given.cap ? " --cap" : "");
}

constexpr payload_row rows[] = {
    {payload_none, add_none, write_none, read_none, say_none},
    {payload_switch, add_switch, write_switch, read_switch, say_switch},
    {payload_number, add_number, write_number, read_number, say_number},
    {payload_duration, add_duration, write_number, read_number, say_number},
    {payload_text, add_text, write_text, read_text, say_text},
    {payload_game, add_game, write_game, read_game, say_game},
    {payload_home, add_home, write_home, read_home, say_home},
    {payload_automode, add_automode, write_number, read_number, say_automode},
    {payload_lpm, add_lpm, write_lpm, read_lpm, say_lpm},
};
static_assert(rows[payload_lpm].kind == payload_lpm, "a kind is its own row");

}  // namespace

CLI::Validator at_most(size_t characters) {
    return CLI::Validator(
        [characters](std::string &text) -> std::string {
            if (text.size() <= characters)
                return {};
            return "'" + text + "' has more than " + std::to_string(characters) + " characters";
        },
        "");
}

void payload_add_options(payload_kind kind, CLI::App *command, payload_words *given) {
    rows[kind].add_options(command, given);
}

std::string payload_take(payload_kind kind, std::vector<std::string> words, payload_words *given) {
    CLI::App command;
    command.set_help_flag();
    payload_add_options(kind, &command, given);
    std::reverse(words.begin(), words.end());  // as the library takes them
    try {
        command.parse(words);
    } catch (const CLI::ParseError &error) {
        return error.what();
    }
    return {};
}

bool payload_is_text(payload_kind kind) {
    return kind == payload_text || kind == payload_home;
}

void payload_write(payload_kind kind, const payload_words &given, dvx_message *message) {
    rows[kind].write(given, message);
}

payload_words payload_read(payload_kind kind, const dvx_message &message) {
    payload_words given;
    rows[kind].read(message, &given);
    return given;
}

std::string payload_say(payload_kind kind, const payload_words &given) {
    return rows[kind].say(given);
}
