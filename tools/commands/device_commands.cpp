#include "tools/commands/device_commands.h"
#include "tools/base/shown.h"

#include <stdio.h>
#include <string.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "device/hardware_conf.h"
#include "device/virtual_device.h"
#include "tools/base/exit_status.h"
#include "tools/base/words.h"
#include "tools/commands/command_line.h"
#include "tools/commands/day.h"
#include "tools/commands/device_frames.h"
#include "tools/device/delivery.h"
#include "tools/device/device_run.h"
#include "tools/device/services.h"
#include "tools/device/watch.h"
#include "tools/scenario/play.h"

namespace {

constexpr char virtual_time[] = "virtual";

struct arguments {
    std::string file;
    std::string only;
    std::string time = virtual_time;
    bool stay = false;
    bool all = false;
    bool fresh = false;
    bool brief = false;
    bool why = false;
};

int lay_out(const std::string &root, bool fresh) {
    const bool keep_conf = !fresh && device_conf_is_own(root);
    const std::string error = device_create(root, device_image_path(), keep_conf);
    if (!error.empty())
        return fail(error);
    printf("device laid out at %s\n", shown(root).c_str());
    if (keep_conf)
        printf("its hardware.conf was changed by hand and stays; --fresh replaces it\n");
    return 0;
}

int start_daemon(const std::string &root) {
    if (!device_exists(root))
        return fail_without_device(root);
    if (device_daemon_process(root) != 0)
        return fail("a daemon runs on " + root + " already");
    for (const std::string &wrong : device_check_conf(root))
        warn(wrong);
    int pid = 0;
    const result started = start_device(root, false, &pid);
    if (started.kind != failure::none)
        return end_with(started);
    printf("dvxd %d serves %s\n", pid, shown(root).c_str());
    return 0;
}

int stop_daemon(const std::string &root) {
    const int pid = device_daemon_process(root);
    const result stopped = stop_device(root);
    if (stopped.kind != failure::none)
        return end_with(stopped);
    printf("dvxd %d stopped\n", pid);
    return 0;
}

int report_node_error(const std::string &root, int error) {
    if (!device_exists(root))
        return fail_without_device(root);
    if (error == -ENXIO)
        return end_with({failure::no_daemon, "no daemon reads the nodes of " + root});
    return fail(root + ": " + strerror(-error));
}

int report_panel(const std::string &root, bool on) {
    const int result = deliver_panel(root, on);
    return result == 0 ? 0 : report_node_error(root, result);
}

int show_property(const std::string &root, const std::string &name, const std::string *value) {
    if (!device_exists(root))
        return fail_without_device(root);
    if (value == nullptr) {
        const std::string present = device_property(root, name);
        if (present.empty())
            return fail(name + " is not set");
        printf("%s\n", shown(present).c_str());
        return 0;
    }
    if (!device_set_property(root, name, *value))
        return fail("cannot set " + name + " to '" + *value + "'");
    return 0;
}

void add_fresh_flag(CLI::App *command, bool *fresh) {
    command->add_flag("--fresh", *fresh, "Replace a hardware.conf that was changed by hand, too");
}

// Refuses to lay out a device anew over a hardware.conf of somebody's own. 0 where none is lost.
int spare_conf(const std::string &root, bool fresh) {
    if (fresh || !device_conf_is_own(root))
        return 0;
    return refuse(root + device_conf +
                  " was changed by hand; give another --root, or --fresh to replace it");
}

void add_commands_of_device(CLI::App *parent, command_context *context) {
    parent->require_subcommand(1);
    auto fresh = std::make_shared<bool>(false);
    CLI::App *create_command = parent->add_subcommand("create", "Lay out a fresh device");
    add_fresh_flag(create_command, fresh.get());
    create_command->callback([=] { context->exit_code = lay_out(context->root, *fresh); });
    parent->add_subcommand("start", "Start dvxd on the device")->callback([=] {
        context->exit_code = start_daemon(context->root);
    });
    parent->add_subcommand("stop", "Stop the device's dvxd")->callback([=] {
        context->exit_code = stop_daemon(context->root);
    });

    parent->add_subcommand("services", "Stand in for the services that dvxd talks to")
        ->callback([=] { context->exit_code = serve_services(context->root, true); });

    auto state = std::make_shared<std::string>();
    CLI::App *panel_command = parent->add_subcommand("panel", "Report the panel's power");
    panel_command->add_option("STATE", *state, "on or off")
        ->required()
        ->check(CLI::IsMember({"on", "off"}));
    panel_command->callback(
        [=] { context->exit_code = report_panel(context->root, *state == "on"); });

    add_device_frames_command(parent, context);

    auto name = std::make_shared<std::string>();
    auto value = std::make_shared<std::string>();
    CLI::App *prop_command = parent->add_subcommand("prop", "Show or set a system property");
    prop_command->add_option("NAME", *name, "Its name")->required();
    const CLI::Option *given = prop_command->add_option("VALUE", *value, "Its new value");
    prop_command->callback([=] {
        context->exit_code =
            show_property(context->root, *name, given->count() > 0 ? value.get() : nullptr);
    });
}

}  // namespace

void add_device_commands(CLI::App *parent, command_context *context) {
    auto given = std::make_shared<arguments>();
    CLI::App *device = parent->add_subcommand("device", "Virtual devices")->group("Virtual device");
    CLI::App *watch =
        parent->add_subcommand("watch", "Follow a device as one timeline")->group("Virtual device");
    CLI::App *day = parent->add_subcommand("day", "Play a short day on a fresh device")
                        ->group("Virtual device");
    add_commands_of_device(device, context);
    watch->add_flag("--brief", given->brief, "Without start-up's tables and the book-keeping");
    watch->add_flag("--why", given->why, "Each line of the log in words beneath it");
    watch->callback(
        [=] { context->exit_code = watch_device(context->root, given->brief, given->why); });
    CLI::App *play =
        parent->add_subcommand("play", "Play scenarios and hold what must follow against it")
            ->group("Virtual device");
    play->add_option("FILE", given->file, "Scenarios, as docs/scenarios.md has them")->required();
    play->add_option(
            "--time", given->time,
            "virtual: in the simulator; real, or N times as fast: on a fresh device at the root")
        ->check([](const std::string &text) { return check_speed(text, virtual_time); })
        ->capture_default_str();
    play->add_option("--only", given->only, "The scenario of that name alone");
    play->add_flag("--show", given->all, "Print each line with what followed it");
    play->callback([=] {
        if (given->time != virtual_time && context->root.empty())
            throw CLI::RequiredError("--root or DVXD_ROOT");
        if (given->time != virtual_time)
            context->exit_code = spare_conf(context->root, given->fresh);
        if (context->exit_code == 0)
            context->exit_code = play_file(given->file, given->only, context->root,
                                           parse_speed(given->time, virtual_time), given->all);
    });
    day->add_flag("--stay", given->stay, "Leave device and daemon up");
    day->add_flag("--all", given->all, "Show everything that happens, not what changes in effect");
    day->callback([=] {
        context->exit_code = spare_conf(context->root, given->fresh);
        if (context->exit_code == 0)
            context->exit_code = play_day(context->root, given->stay, given->all);
    });
    add_fresh_flag(play, &given->fresh);
    add_fresh_flag(day, &given->fresh);
    for (CLI::App *command : {device, watch, day})
        command_line_needs_root(command, context);
}
