#include "tools/doctor/doctor.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <poll.h>
#include <stdio.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <vector>

#include "device/virtual_device.h"
#include "fia/records.h"
#include "tools/base/exit_status.h"
#include "tools/base/files.h"
#include "tools/base/json.h"
#include "tools/base/processes.h"
#include "tools/base/shown.h"
#include "tools/base/terminal.h"
#include "tools/device/daemon_process.h"
#include "tools/device/delivery.h"
#include "tools/doctor/dependencies.h"
#include "tools/doctor/elf_symbols.h"
#include "tools/doctor/phone.h"

using nlohmann::ordered_json;

namespace {

constexpr int wanted_priority = -20;
constexpr double highest_hz = 60;  // that the analyser's buckets tell apart

enum class verdict { good, off, unknown };

struct finding {
    std::string subject;  // "library", "node", "property", "socket", "service", "rights", "panel"
    std::string name;
    verdict found;
    std::string said;     // what is there
    std::string without;  // what is off; only where something is
};

// What is known while the device is looked at.
struct device_look {
    doctor_options options;
    int daemon = 0;
    elf_symbols program;  // the daemon's, else this one: a library must be of its kind
    std::vector<finding> found;
};

std::string below(const device_look &look, const std::string &path) {
    return look.options.root == "/" ? path : look.options.root + path;
}

void add(device_look *look, const char *subject, const std::string &name, verdict found,
         const std::string &said, const std::string &without = "") {
    look->found.push_back({subject, name, found, said, without});
}

// ---- libraries

bool is_of_kind(const elf_symbols &library, const elf_symbols &program) {
    return library.error.empty() && library.is_64_bit == program.is_64_bit &&
           library.processor == program.processor;
}

// The library as the daemon would open it, and where.
elf_symbols find_library(const device_look &look, const std::vector<std::string> &paths,
                         std::string *where) {
    elf_symbols first;
    for (const std::string &path : paths) {
        elf_symbols read = elf_read(below(look, path));
        if (is_of_kind(read, look.program)) {
            *where = path;
            return read;
        }
        if (read.error.empty())
            read.error = "is for " + read.processor + ", the daemon for " + look.program.processor;
        if (where->empty() || read.is_there) {
            first = read;
            *where = path;
        }
    }
    return first;
}

std::vector<std::string> library_paths(const device_look &look, const dependency &thing) {
    const std::string name = thing.name;
    if (thing.kind == dependency_kind::extension) {
        const std::string path = phone_property(look.options.root, name).value_or("");
        return path.empty() ? std::vector<std::string>() : std::vector<std::string>{path};
    }
    if (thing.kind == dependency_kind::library)
        return {"/vendor/lib/" + name, "/vendor/lib64/" + name};
    return {"/vendor/lib64/" + name, "/vendor/lib/" + name, "/system/lib64/" + name,
            "/system/lib/" + name, "/odm/lib64/" + name};
}

void look_at_library(device_look *look, const dependency &thing) {
    // Only a loader tells where the one that is linked lies; a daemon that runs has found it.
    if (thing.kind == dependency_kind::linked && look->daemon != 0) {
        add(look, "library", thing.name, verdict::good, "the daemon that runs has it");
        return;
    }
    if (thing.kind == dependency_kind::linked && device_exists(look->options.root)) {
        add(look, "library", thing.name, verdict::good, "a stand-in comes with the daemon");
        return;
    }
    const std::vector<std::string> paths = library_paths(*look, thing);
    if (paths.empty()) {
        add(look, "library", thing.name, verdict::off, "the property is unset", thing.without);
        return;
    }
    std::string where;
    const elf_symbols library = find_library(*look, paths, &where);
    std::string missing;
    for (const char *symbol : thing.symbols)
        if (!library.defined.contains(symbol))
            missing += std::string(missing.empty() ? "" : ", ") + symbol;
    if (!library.is_there && paths.size() > 1)
        where =
            std::string(thing.name) + (thing.kind == dependency_kind::linked
                                           ? ", in the library folders of /vendor, /system, /odm"
                                           : ", below /vendor/lib or /vendor/lib64");
    if (!library.error.empty())
        add(look, "library", where, verdict::off, library.error, thing.without);
    else if (!missing.empty())
        add(look, "library", where, verdict::off, "lacks " + missing, thing.without);
    else
        add(look, "library", where, verdict::good,
            "has " + std::string(thing.symbols.front()) +
                (thing.symbols.size() > 1
                     ? " and " + std::to_string(thing.symbols.size() - 1) + " more"
                     : ""));
}

// ---- nodes

bool signals_within(const std::string &path, double wait_s) {
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    char report[64];
    pollfd node = {fd, POLLPRI | POLLERR, 0};
    // An attribute that nobody has read since it was opened counts as changed.
    const bool was_read = fd >= 0 && read(fd, report, sizeof(report)) >= 0;
    const int count = was_read ? poll(&node, 1, static_cast<int>(wait_s * 1000)) : 0;
    if (fd >= 0)
        close(fd);
    return count > 0 && (node.revents & POLLPRI) != 0;
}

void look_at_node(device_look *look, const dependency &thing) {
    const std::string path = below(*look, thing.name);
    struct stat about;
    struct statfs system = {};
    if (stat(path.c_str(), &about) != 0) {
        add(look, "node", thing.name, verdict::off, "is not there", thing.without);
        return;
    }
    statfs(path.c_str(), &system);
    if (access(path.c_str(), R_OK) != 0)
        add(look, "node", thing.name, verdict::off, "may not be read by this user", thing.without);
    else if (S_ISFIFO(about.st_mode))
        add(look, "node", thing.name, verdict::good, "a virtual device's pipe");
    else if (!S_ISREG(about.st_mode))
        add(look, "node", thing.name, verdict::off, "is no file", thing.without);
    else if (system.f_type != SYSFS_MAGIC && system.f_type != PROC_SUPER_MAGIC)
        add(look, "node", thing.name, verdict::off, "is a plain file, which never signals",
            thing.without);
    else if (look->options.wait_s > 0 && !signals_within(path, look->options.wait_s))
        add(look, "node", thing.name, verdict::off, "an attribute that did not signal meanwhile",
            thing.without);
    else
        add(look, "node", thing.name, verdict::good,
            look->options.wait_s > 0 ? "an attribute that signals" : "an attribute");
}

// ---- properties, sockets, services

void look_at_property(device_look *look, const dependency &thing) {
    const std::optional<std::string> value = phone_property(look->options.root, thing.name);
    if (!value)
        add(look, "property", thing.name, verdict::unknown, "nobody here to ask");
    else
        add(look, "property", thing.name, verdict::good,
            !value->empty()                       ? "\"" + *value + "\""
            : thing.kind == dependency_kind::read ? std::string("unset: ") + thing.without
                                                  : "unset: the daemon sets it");
}

void look_at_socket(device_look *look, const dependency &thing) {
    const char *subject = thing.kind == dependency_kind::served ? "socket" : "service";
    if (access("/proc/net/unix", R_OK) != 0)
        add(look, subject, thing.name, verdict::unknown, "the list of sockets may not be read");
    else if (socket_is_taken(thing.name))
        add(look, subject, thing.name, verdict::good, "somebody listens");
    else
        add(look, subject, thing.name, verdict::off, "nobody listens", thing.without);
}

// ---- rights and panel

void look_at_rights(device_look *look) {
    if (look->daemon == 0) {
        add(look, "rights", "dvxd", verdict::unknown, "no daemon runs");
        return;
    }
    if (process_is_stopped(look->daemon)) {
        add(look, "rights", "dvxd", verdict::off,
            "process " + std::to_string(look->daemon) + " is stopped, as by a debugger",
            "no message is answered");
        return;
    }
    const int priority = getpriority(PRIO_PROCESS, static_cast<id_t>(look->daemon));
    const std::string process = "process " + std::to_string(look->daemon);
    if (priority == wanted_priority)
        add(look, "rights", "dvxd", verdict::good,
            process + ", priority " + std::to_string(priority));
    else if (device_exists(look->options.root))
        add(look, "rights", "dvxd", verdict::good,
            process + ", priority " + std::to_string(priority) + "; a phone's has " +
                std::to_string(wanted_priority));
    else
        add(look, "rights", "dvxd", verdict::off,
            process + ", priority " + std::to_string(priority) + ": it may not raise its own",
            "its decisions wait behind busy apps");
    const std::string context =
        read_file("/proc/" + std::to_string(look->daemon) + "/attr/current").c_str();
    if (phone_is_here(look->options.root) && !context.starts_with("u:r:dvxd:"))
        add(look, "rights", "dvxd", verdict::off, "runs as " + context + ", not in its own domain",
            "the policy's rules for it do not hold");
}

void look_at_panel(device_look *look) {
    const double hz = look->options.panel_hz > 0 ? look->options.panel_hz
                                                 : phone_panel_hz(look->options.root).value_or(0);
    if (hz == 0) {
        add(look, "panel", "rate", verdict::unknown, "not known; --panel HZ says it");
        return;
    }
    char said[96];
    snprintf(said, sizeof(said), "%g frames per second", hz);
    if (hz > highest_hz + 1) {
        add(look, "panel", "rate", verdict::off, said,
            "games above 60 frames per second are taken for games of 60, and their caps lowered "
            "accordingly");
        return;
    }
    const uint32_t bucket = fia_bucket(static_cast<uint64_t>(interval_second / hz));
    snprintf(said, sizeof(said), "%g frames per second, in the bucket of %u", hz, 60 - 3 * bucket);
    add(look, "panel", "rate", verdict::good, said);
}

// ---- saying it

constexpr const char *verdict_words[] = {"good", "off", "unknown"};

void print_findings(const std::vector<finding> &found) {
    size_t off = 0;
    for (const finding &each : found) {
        char begin[32];
        snprintf(begin, sizeof(begin), "%-8s %-8s ", verdict_words[static_cast<size_t>(each.found)],
                 each.subject.c_str());
        const size_t indent = strlen(begin);
        print_folded(begin + shown(each.name + ": " + each.said), indent);
        if (!each.without.empty())
            print_folded(std::string(indent, ' ') + "without it: " + each.without, indent);
        off += each.found == verdict::off ? 1 : 0;
    }
    if (off == 0)
        printf("Nothing is off.\n");
    else
        printf("%zu of %zu off.\n", off, found.size());
}

void print_json(const doctor_options &options, const std::vector<finding> &found) {
    ordered_json findings = ordered_json::array();
    for (const finding &each : found)
        findings.push_back({{"subject", each.subject},
                            {"name", each.name},
                            {"verdict", verdict_words[static_cast<size_t>(each.found)]},
                            {"said", each.said},
                            {"without", each.without.empty() ? ordered_json(nullptr)
                                                             : ordered_json(each.without)}});
    const ordered_json said = {{"root", options.root}, {"findings", findings}};
    printf("%s\n", json_write(said).c_str());
}

// The findings, in the order of the daemon's start.
std::vector<finding> look_at_device(const doctor_options &options) {
    device_look look;
    look.options = options;
    look.daemon = daemon_process(options.root);
    look.program = elf_read(look.daemon != 0 ? "/proc/" + std::to_string(look.daemon) + "/exe"
                                             : "/proc/self/exe");
    if (!look.program.error.empty())  // another user's daemon
        look.program = elf_read("/proc/self/exe");
    for (const dependency &thing : dependencies) {
        switch (thing.kind) {
            case dependency_kind::library:
            case dependency_kind::linked:
            case dependency_kind::extension:
                look_at_library(&look, thing);
                break;
            case dependency_kind::node:
                look_at_node(&look, thing);
                break;
            case dependency_kind::read:
            case dependency_kind::set:
                look_at_property(&look, thing);
                break;
            case dependency_kind::served:
            case dependency_kind::called:
                look_at_socket(&look, thing);
                break;
        }
    }
    look_at_rights(&look);
    look_at_panel(&look);
    return look.found;
}

}  // namespace

int doctor_command(doctor_options options, bool json) {
    if (options.root.empty() && phone_is_here("/"))
        options.root = "/";
    struct stat about;
    if (options.root.empty() || stat(options.root.c_str(), &about) != 0 ||
        !S_ISDIR(about.st_mode)) {
        return refuse(options.root.empty()
                          ? "this is no phone; say whose device with --root or DVXD_ROOT"
                          : options.root + " is no directory");
    }
    const std::vector<finding> found = look_at_device(options);
    if (json)
        print_json(options, found);
    else
        print_findings(found);
    for (const finding &each : found)
        if (each.found == verdict::off)
            return exit_found;
    return 0;
}
