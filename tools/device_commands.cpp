#include "tools/device_commands.h"

#include <cutils/properties.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <iostream>
#include <memory>

#include "device/virtual_device.h"
#include "tools/frames.h"
#include "tools/services.h"

namespace {

constexpr int start_timeout_ms = 5000;
constexpr int stop_timeout_ms = 2000;

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
    return fail(root + " is not a virtual device; lay one out with dvxctl device create");
}

int start(const std::string &root) {
    if (!device_exists(root))
        return fail_without_device(root);
    if (device_daemon_process(root) != 0)
        return fail("a daemon runs on " + root + " already");
    const int pid = device_start_daemon(root, sibling_program("dvxd"));
    if (pid < 0)
        return fail("cannot start dvxd on " + root + ": " + strerror(-pid));
    if (device_wait_until_started(root, pid, start_timeout_ms) == device_started) {
        if (device_services_process(root) == 0)
            device_start_services(root);
        printf("dvxd %d serves %s\n", pid, root.c_str());
        return 0;
    }
    int64_t offset = 0;
    for (const std::string &line : device_read_lines(root + device_daemon_log, &offset)) {
        if (line.ends_with("fail to create socket"))
            return fail(
                "another daemon has the socket; give this one a network of its own with "
                "unshare --net --map-root-user");
        fprintf(stderr, "%s\n", line.c_str());
    }
    return fail("dvxd did not start");
}

int stop(const std::string &root) {
    const int services = device_services_process(root);
    if (services != 0)
        kill(services, SIGTERM);
    const int pid = device_daemon_process(root);
    if (pid == 0)
        return fail("no daemon runs on " + root);
    kill(pid, SIGTERM);
    for (int waited_ms = 0; device_daemon_process(root) != 0; waited_ms += 10) {
        if (waited_ms > stop_timeout_ms)
            return fail("dvxd " + std::to_string(pid) + " does not stop");
        usleep(10000);
    }
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
    const int result = device_report_panel(root, on);
    return result == 0 ? 0 : report_node_error(root, result);
}

int frames(const std::string &root, const std::string &path, const std::string &column,
           double unit_us, double speed) {
    std::ifstream file;
    if (path != "-") {
        file.open(path);
        if (!file)
            return fail("cannot read " + path);
    }
    const frame_file input = read_frames(path == "-" ? std::cin : file, column, unit_us);
    if (!input.error.empty())
        return fail(path + ": " + input.error);
    if (input.intervals_us.empty())
        return fail(path + ": no intervals");
    const int result = play_frames(root, input.intervals_us, speed);
    if (result != 0)
        return report_node_error(root, result);
    printf("%zu intervals played\n", input.intervals_us.size());
    return 0;
}

int property(const std::string &root, const std::string &name, const std::string *value) {
    setenv("DVXD_ROOT", root.c_str(), 1);
    if (value == nullptr) {
        char present[PROPERTY_VALUE_MAX];
        property_get(name.c_str(), present, "");
        printf("%s\n", present);
        return 0;
    }
    if (property_set(name.c_str(), value->c_str()) != 0)
        return fail("cannot set " + name + " to '" + *value + "'");
    return 0;
}

// "real", "max" or a factor.
std::string check_rate(const std::string &text) {
    char *end = nullptr;
    if (text == "real" || text == "max" ||
        (strtod(text.c_str(), &end) > 0 && end != text.c_str() && *end == '\0'))
        return {};
    return "'" + text + "' is neither real nor max nor a factor above 0";
}

double parse_rate(const std::string &text) {
    return text == "max" ? 0 : text == "real" ? 1 : strtod(text.c_str(), nullptr);
}

void add_frames_command(CLI::App *parent, const std::string *root, int *exit_code) {
    struct arguments {
        std::string path, column, rate = "real", unit = "us";
    };
    auto given = std::make_shared<arguments>();
    CLI::App *command = parent->add_subcommand("frames", "Play frame intervals into the node");
    command->add_option("FILE", given->path, "One number a line, or CSV; - for standard input")
        ->required();
    command->add_option("--column", given->column, "Name of the CSV column");
    command->add_option("--unit", given->unit, "Unit of the numbers")
        ->check(CLI::IsMember({"us", "ms"}))
        ->capture_default_str();
    command->add_option("--rate", given->rate, "real, max, or N times real time")
        ->check(check_rate)
        ->capture_default_str();
    command->callback([=] {
        *exit_code = frames(*root, given->path, given->column, given->unit == "ms" ? 1000 : 1,
                            parse_rate(given->rate));
    });
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

    add_frames_command(parent, root, exit_code);

    auto name = std::make_shared<std::string>();
    auto value = std::make_shared<std::string>();
    CLI::App *prop_command = parent->add_subcommand("prop", "Show or set a system property");
    prop_command->add_option("NAME", *name, "Its name")->required();
    const CLI::Option *given = prop_command->add_option("VALUE", *value, "Its new value");
    prop_command->callback(
        [=] { *exit_code = property(*root, *name, given->count() > 0 ? value.get() : nullptr); });
}
