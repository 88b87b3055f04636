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

int send(const dvx_message &message, bool is_text, const std::string &root) {
    return end_with(deliver_message(message, is_text, root));
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

}  // namespace

void add_message_commands(CLI::App *parent, const std::string *root, int *exit_code) {
    auto given = std::make_shared<arguments>();
    for (const message_word &word : message_words) {
        CLI::App *command = parent->add_subcommand(word.word, word.help)->group("Messages");
        payload_add_options(word.payload, command, &given->payload);
        command->callback([&word, given, root, exit_code] {
            *exit_code =
                send(make_word_message(word, given->payload), payload_is_text(word.payload), *root);
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
        *exit_code = send(is_text ? make_text_message(client, given->code, given->text)
                                  : make_message(client, given->code, given->values),
                          is_text, *root);
    });
    CLI::App *events = parent->add_subcommand("events", "Every event with its name");
    events->add_option("EVENT", given->events, "Only these, by name or number")->type_name("EVENT");
    events->add_flag("--json", given->json, "An object an event, in a line each");
    events->callback([=] { *exit_code = print_events(given->events, given->json); });
}
