#include "tools/device_commands.h"

#include <stdio.h>
#include <string.h>

#include <memory>

#include "device/hardware_conf.h"
#include "device/virtual_device.h"
#include "tools/delivery.h"
#include "tools/device_run.h"
#include "tools/frames/frames_command.h"
#include "tools/services.h"

namespace {

int fail(const std::string &reason) {
    fprintf(stderr, "dvxctl: %s\n", reason.c_str());
    return 1;
}

int create(const std::string &root) {
    const std::string error = device_create(root, device_image_path());
    if (!error.empty())
        return fail(error);
    printf("device laid out at %s\n", root.c_str());
    return 0;
}

int fail_without_device(const std::string &root) {
    return fail(root + " is not a virtual device; lay one out with dvxctl --root " +
                shell_quoted(root) + " device create");
}

int start(const std::string &root) {
    if (!device_exists(root))
        return fail_without_device(root);
    if (device_daemon_process(root) != 0)
        return fail("a daemon runs on " + root + " already");
    for (const std::string &wrong : device_check_conf(root))
        fprintf(stderr, "dvxctl: %s\n", wrong.c_str());
    int pid = 0;
    const std::string error = start_device(root, false, &pid);
    if (!error.empty())
        return fail(error);
    printf("dvxd %d serves %s\n", pid, root.c_str());
    return 0;
}

int stop(const std::string &root) {
    const int pid = device_daemon_process(root);
    const std::string error = stop_device(root);
    if (!error.empty())
        return fail(error);
    printf("dvxd %d stopped\n", pid);
    return 0;
}

int report_node_error(const std::string &root, int error) {
    if (!device_exists(root))
        return fail_without_device(root);
    return fail(error == -ENXIO ? "no daemon reads the nodes of " + root
                                : root + ": " + strerror(-error));
}

int panel(const std::string &root, bool on) {
    const int result = deliver_panel(root, on);
    return result == 0 ? 0 : report_node_error(root, result);
}

int property(const std::string &root, const std::string &name, const std::string *value) {
    if (value == nullptr) {
        const std::string present = device_property(root, name);
        if (present.empty())
            return fail(name + " is not set");
        printf("%s\n", present.c_str());
        return 0;
    }
    if (!device_set_property(root, name, *value))
        return fail("cannot set " + name + " to '" + *value + "'");
    return 0;
}

}  // namespace

void add_device_commands(CLI::App *parent, const std::string *root, int *exit_code) {
    parent->require_subcommand(1);
    parent->add_subcommand("create", "Lay out a fresh device")->callback([=] {
        *exit_code = create(*root);
    });
    parent->add_subcommand("start", "Start dvxd on the device")->callback([=] {
        *exit_code = start(*root);
    });
    parent->add_subcommand("stop", "Stop the device's dvxd")->callback([=] {
        *exit_code = stop(*root);
    });

    parent->add_subcommand("services", "Stand in for the services that dvxd talks to")
        ->callback([=] { *exit_code = serve_services(*root, true); });

    auto state = std::make_shared<std::string>();
    CLI::App *panel_command = parent->add_subcommand("panel", "Report the panel's power");
    panel_command->add_option("STATE", *state, "on or off")
        ->required()
        ->check(CLI::IsMember({"on", "off"}));
    panel_command->callback([=] { *exit_code = panel(*root, *state == "on"); });

    add_device_frames_command(parent, root, exit_code);

    auto name = std::make_shared<std::string>();
    auto value = std::make_shared<std::string>();
    CLI::App *prop_command = parent->add_subcommand("prop", "Show or set a system property");
    prop_command->add_option("NAME", *name, "Its name")->required();
    const CLI::Option *given = prop_command->add_option("VALUE", *value, "Its new value");
    prop_command->callback(
        [=] { *exit_code = property(*root, *name, given->count() > 0 ? value.get() : nullptr); });
}
