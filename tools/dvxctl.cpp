// dvxctl: talks to dvxd in words, and runs virtual devices for it.

#include <signal.h>
#include <stdio.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "core/events.h"
#include "device/virtual_device.h"
#include "tools/day.h"
#include "tools/device_commands.h"
#include "tools/messages.h"
#include "tools/timeline.h"

namespace {

constexpr int exit_failure = 1;
constexpr int exit_usage = 2;
constexpr useconds_t watch_pause_us = 20000;

// What the words of the command line say, wherever they stand.
struct arguments {
    std::string root;
    std::string state;
    std::string text;
    std::string client;
    std::vector<int32_t> values;
    int32_t code = 0;
    int32_t number = 0;
    int32_t fps = 60;
    int32_t tuner = 0;
    int32_t ofvalue = 0;
    bool cap = false;
    bool stay = false;
    bool needs_root = false;
};

int send(const dvx_message &message, bool is_text, const std::string &root) {
    const int result = send_message(message, is_text, root);
    if (result == 0)
        return 0;
    fprintf(stderr, "dvxctl: no daemon takes the message: %s\n", strerror(-result));
    return exit_failure;
}

int watch(const std::string &root) {
    if (access((root + device_calls_log).c_str(), R_OK) != 0) {
        fprintf(stderr, "dvxctl: %s is not a virtual device\n", root.c_str());
        return exit_failure;
    }
    timeline line = timeline_open(root);
    while (fflush(stdout) == 0 && ferror(stdout) == 0) {  // until nobody reads any more
        for (const timeline_entry &entry : timeline_read(&line))
            timeline_print(&line, entry);
        usleep(watch_pause_us);
    }
    return 0;
}

int print_events() {
    for (uint32_t id = 0; id < event_count; ++id)
        if (event_name(id) != nullptr)
            printf("%2u  %s\n", id, event_name(id));
    return 0;
}

void add_state_option(CLI::App *command, arguments *given) {
    command->add_option("STATE", given->state, "on or off")
        ->required()
        ->check(CLI::IsMember({"on", "off"}));
}

dvx_message make_word_message(const message_word &word, const arguments &given) {
    const auto values = [&](const std::vector<int32_t> &list) {
        return make_message(word.client, word.code, list);
    };
    const int32_t on = given.state == "on" ? 1 : 0;
    switch (word.payload) {
        case payload_none:
            return values({});
        case payload_switch:
            return values({on});
        case payload_number:
        case payload_automode:
            return values({given.number});
        case payload_text:
            return make_text_message(word.client, word.code, given.text);
        case payload_game:
            return values({given.tuner, on, given.fps, given.ofvalue});
        case payload_home:
            return make_text_message(
                word.client, word.code,
                std::to_string(given.number) + (given.text.empty() ? "" : ":" + given.text));
        case payload_lpm:
            return values({given.number != 0 ? 1 : 0, given.number, given.cap ? 1 : 0});
    }
    return values({});
}

// Turns one of the words into its number; else takes a number up to `max`.
CLI::Validator word_or_number(const std::map<std::string, int32_t> &words, long max) {
    return CLI::Validator(
        [words, max](std::string &text) -> std::string {
            const auto word = words.find(text);
            char *end = nullptr;
            const long number = strtol(text.c_str(), &end, 10);
            if (word != words.end())
                text = std::to_string(word->second);
            else if (text.empty() || *end != '\0' || number > max)
                return "'" + text + "' is not known here";
            return {};
        },
        "");
}

void add_payload_options(CLI::App *command, payload_kind payload, arguments *given) {
    switch (payload) {
        case payload_none:
            break;
        case payload_switch:
            add_state_option(command, given);
            break;
        case payload_number:
            command->add_option("N", given->number, "The number")->required();
            break;
        case payload_text:
            command->add_option("NAME", given->text, "The name, at most 255 characters")
                ->required();
            break;
        case payload_game:
            add_state_option(command, given);
            command->add_option("--fps", given->fps, "Frame rate of the game tuner")
                ->capture_default_str();
            command->add_option("--tuner", given->tuner, "Game-tuner mode; 1: under the tuner")
                ->capture_default_str();
            command->add_option("--ofvalue", given->ofvalue, "Of-value")->capture_default_str();
            break;
        case payload_home:
            command->add_option("STATE", given->number, "0 left, 1 shown, 2 with live wallpaper")
                ->required();
            command->add_option("NAME", given->text, "The home activity");
            break;
        case payload_automode:
            command
                ->add_option("COMMAND", given->number, "off, on, touch, resume, exit or a number")
                ->required()
                ->transform(word_or_number(
                    {{"off", 0}, {"on", 1}, {"touch", 2}, {"resume", 3}, {"exit", 4}}, INT32_MAX));
            break;
        case payload_lpm:
            command->add_option("LEVEL", given->number, "off, 1 or 2 (extreme)")
                ->required()
                ->transform(word_or_number({{"off", 0}}, 2));
            command->add_flag("--cap", given->cap, "Cap the frame rate at 30 (level 2)");
            break;
    }
}

void add_message_commands(CLI::App *app, arguments *given, int *exit_code) {
    for (const message_word &word : message_words) {
        CLI::App *command = app->add_subcommand(word.word, word.help)->group("Messages");
        add_payload_options(command, word.payload, given);
        command->callback([&word, given, exit_code] {
            const bool is_text = word.payload == payload_text || word.payload == payload_home;
            *exit_code = send(make_word_message(word, *given), is_text, given->root);
        });
    }
    CLI::App *raw = app->add_subcommand("raw", "Any message")->group("Messages");
    raw->add_option("CLIENT", given->client, "Client name")->required();
    raw->add_option("CODE", given->code, "Message code")->required();
    CLI::Option *values =
        raw->add_option("INT", given->values, "Up to 64 values")->expected(0, DVX_PAYLOAD_VALUES);
    CLI::Option *text = raw->add_option("--text", given->text, "A text")->excludes(values);
    raw->callback([=] {
        const bool is_text = text->count() > 0;
        const char *client = given->client.c_str();
        *exit_code = send(is_text ? make_text_message(client, given->code, given->text)
                                  : make_message(client, given->code, given->values),
                          is_text, given->root);
    });
}

void add_device_group(CLI::App *app, arguments *given, int *exit_code) {
    CLI::App *device = app->add_subcommand("device", "Virtual devices")->group("Virtual device");
    CLI::App *watch_command =
        app->add_subcommand("watch", "Follow a device as one timeline")->group("Virtual device");
    CLI::App *day =
        app->add_subcommand("day", "Play a short day on a fresh device")->group("Virtual device");
    app->add_subcommand("events", "Every event with its name")->callback([=] {
        *exit_code = print_events();
    });
    add_device_commands(device, &given->root, exit_code);
    watch_command->callback([=] { *exit_code = watch(given->root); });
    day->add_flag("--stay", given->stay, "Leave device and daemon up");
    day->callback([=] { *exit_code = play_day(given->root, given->stay); });
    for (CLI::App *command : {device, watch_command, day})
        command->preparse_callback([=](size_t) { given->needs_root = true; });
}

}  // namespace

int main(int argc, char **argv) {
    signal(SIGPIPE, SIG_IGN);
    arguments given;
    int exit_code = 0;
    CLI::App app("Talks to dvxd in words, and runs virtual devices for it.", "dvxctl");
    app.require_subcommand(1);
    app.get_formatter()->column_width(22);
    app.fallthrough();
    app.add_option("--root", given.root, "Directory of the virtual device")->envname("DVXD_ROOT");
    app.parse_complete_callback([&] {
        if (given.needs_root && given.root.empty())
            throw CLI::RequiredError("--root or DVXD_ROOT");
    });
    add_message_commands(&app, &given, &exit_code);
    add_device_group(&app, &given, &exit_code);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp &help) {
        return app.exit(help);
    } catch (const CLI::ParseError &error) {
        const std::vector<std::string> unknown = app.remaining(true);
        if (unknown.empty())
            fprintf(stderr, "dvxctl: %s; see dvxctl --help\n", error.what());
        else
            fprintf(stderr, "dvxctl: unknown word '%s'; see dvxctl --help\n", unknown[0].c_str());
        return exit_usage;
    }
    return exit_code;
}
