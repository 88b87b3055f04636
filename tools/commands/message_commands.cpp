#include "tools/commands/message_commands.h"

#include <stdio.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "core/events.h"
#include "tools/base/exit_status.h"
#include "tools/base/words.h"
#include "tools/device/delivery.h"
#include "tools/recording/messages.h"

namespace {

// What the words behind a message say.
struct arguments {
    payload_words payload;
    std::string client;
    std::string text;
    std::vector<int32_t> values;
    std::vector<std::string> events;
    int32_t code = 0;
    bool json = false;
};

int send(const dvx_message &message, const std::string &root) {
    return end_with(deliver_message(message, root));
}

int print_events(const std::vector<std::string> &wanted, bool json) {
    std::vector<std::string> unknown = wanted;
    for (uint32_t id = 0; id < event_count; ++id) {
        const char *name = event_name(id);
        if (name == nullptr)
            continue;
        const auto means = [&](const std::string &word) {
            return word == name || word == std::to_string(id);
        };
        std::erase_if(unknown, means);
        if (!wanted.empty() && std::none_of(wanted.begin(), wanted.end(), means))
            continue;
        if (json)
            printf("{\"id\":%u,\"name\":\"%s\"}\n", id, name);
        else
            printf("%2u  %s\n", id, name);
    }
    for (const std::string &word : unknown)
        warn("no event is named '" + word + "' or has that number");
    return unknown.empty() ? 0 : exit_input;
}

// Refuses a text of more characters.
CLI::Validator at_most(size_t characters) {
    return CLI::Validator(
        [characters](std::string &text) -> std::string {
            if (text.size() <= characters)
                return {};
            return "'" + text + "' has more than " + std::to_string(characters) + " characters";
        },
        "");
}

// Turns one of the words into its number; any other text stays.
CLI::Validator word_to_number(std::span<const number_word> words) {
    return CLI::Validator(
        [words](std::string &text) -> std::string {
            for (const number_word &row : words)
                if (text == row.word)
                    text = std::to_string(row.number);
            return {};
        },
        "");
}

CLI::Option *add_number(CLI::App *command, const payload_parameter &parameter,
                        payload_words *given) {
    CLI::Option *option =
        command->add_option(parameter.name, given->*parameter.number, parameter.help);
    if (!parameter.words.empty())
        option->transform(word_to_number(parameter.words));
    if (parameter.least != INT32_MIN || parameter.most != INT32_MAX)
        option->check(CLI::Range(parameter.least, parameter.most));
    return payload_is_option(parameter) ? option->capture_default_str() : option;
}

// "on" and "off" alone; CLI11 would take "yes" and "1" as well.
CLI::Option *add_flag(CLI::App *command, const payload_parameter &parameter, payload_words *given) {
    if (payload_is_option(parameter))
        return command->add_flag(parameter.name, given->*parameter.flag, parameter.help);
    bool payload_words::*flag = parameter.flag;
    return command
        ->add_option_function<std::string>(
            parameter.name, [=](const std::string &state) { given->*flag = state == "on"; },
            parameter.help)
        ->check(CLI::IsMember({"on", "off"}));
}

// Adds a payload's words to a command; they are stored in `given`, which outlives the parsing.
void add_payload_options(payload_kind kind, CLI::App *command, payload_words *given) {
    for (const payload_parameter &parameter : payload_parameters(kind)) {
        CLI::Option *option =
            parameter.flag != nullptr ? add_flag(command, parameter, given)
            : parameter.number != nullptr
                ? add_number(command, parameter, given)
                : command->add_option(parameter.name, given->*parameter.text, parameter.help)
                      ->check(at_most(parameter.longest));
        option->required(parameter.required);
    }
}

}  // namespace

void add_message_commands(CLI::App *parent, command_context *context) {
    auto given = std::make_shared<arguments>();
    for (const message_word &word : message_words) {
        CLI::App *command = parent->add_subcommand(word.word, word.help)->group("Messages");
        add_payload_options(word.payload, command, &given->payload);
        command->callback([&word, given, context] {
            context->exit_code = send(make_word_message(word, given->payload), context->root);
        });
    }
    CLI::App *raw = parent->add_subcommand("raw", "Any message")->group("Messages");
    raw->add_option("CLIENT", given->client, "Client name, at most 19 characters")
        ->required()
        ->check(at_most(DVX_CLIENT_NAME_SIZE - 1));
    raw->add_option("CODE", given->code, "Message code")->required();
    CLI::Option *values =
        raw->add_option("INT", given->values, "Up to 64 values")->expected(0, DVX_PAYLOAD_VALUES);
    CLI::Option *text = raw->add_option("--text", given->text, "A text, at most 255 characters")
                            ->excludes(values)
                            ->check(at_most(DVX_PAYLOAD_SIZE - 1));
    raw->callback([=] {
        const bool is_text = text->count() > 0;
        const char *client = given->client.c_str();
        context->exit_code = send(is_text ? make_text_message(client, given->code, given->text)
                                          : make_message(client, given->code, given->values),
                                  context->root);
    });
    CLI::App *events = parent->add_subcommand("events", "Every event with its name");
    events->add_option("EVENT", given->events, "Only these, by name or number")->type_name("EVENT");
    events->add_flag("--json", given->json, "Print one JSON object per event");
    events->callback([=] { context->exit_code = print_events(given->events, given->json); });
}
