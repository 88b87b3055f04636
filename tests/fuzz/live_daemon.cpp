#include "tests/fuzz/live_daemon.h"

#include <android/log.h>
#include <sched.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>

#include "context/activity_trigger.h"
#include "context/running_app.h"
#include "core/debug_gate.h"
#include "core/debug_mode.h"
#include "core/event_manager.h"
#include "device/virtual_device.h"
#include "features/automode.h"
#include "features/dfrc_if.h"
#include "features/image_enhance_controller.h"
#include "features/low_power_mode.h"
#include "features/merlak_if.h"
#include "features/osprin_if.h"
#include "features/profile_controller.h"
#include "features/property_worker.h"
#include "features/thermal_control.h"
#include "fia/clock_manager.h"
#include "fia/lifecycle.h"
#include "fia/records.h"
#include "ipc/client_handlers.h"
#include "resource/acceptor.h"
#include "resource/fps_manager.h"
#include "resource/ie_manager.h"
#include "resource/policy.h"

namespace {

std::string root;

void remove_device() {
    std::error_code error;
    std::filesystem::remove_all(root, error);
}

void lay_out_device() {
    char name[] = "/tmp/dvx-fuzz-XXXXXX";
    root = mkdtemp(name);
    const char *build = getenv("DVX_BUILD");
    const std::string image = build != nullptr ? std::string(build) + "/device" : "";
    const std::string error = device_create(root, image.empty() ? device_image_path() : image);
    // Calls are recorded nowhere: a fuzzer makes millions.
    std::filesystem::remove(root + device_calls_log);
    std::filesystem::create_symlink("/dev/null", root + device_calls_log);
    if (!error.empty()) {
        fprintf(stderr, "%s\n", error.c_str());
        abort();
    }
    setenv("DVXD_ROOT", root.c_str(), 1);
    atexit(remove_device);
}

}  // namespace

extern "C" int __android_log_print(int, const char *, const char *format, ...) {
    char text[1024];
    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf(text, sizeof(text), format, arguments);
    va_end(arguments);
    return length;
}

void start_live_daemon(void) {
    static const bool started = [] {
        // Names of other services belong to whoever is on this host.
        if (unshare(geteuid() == 0 ? CLONE_NEWNET : CLONE_NEWUSER | CLONE_NEWNET) != 0)
            fprintf(stderr, "no network namespace of one's own here\n");
        lay_out_device();
        init_lpm_config();
        init_event_manager();
        start_fps_manager();
        add_acceptor("fps", fps_manager_set_grant);
        init_dfrc_if();
        init_merlak_if();
        start_ie_manager();
        add_acceptor("off_image_enhancer", ie_manager_set_grant);
        init_image_enhance_controller();
        init_fia_clock_manager();
        init_fia();
        init_fevent_monitor();
        init_activity_trigger();
        init_el();
        start_policy_manager();
        init_profile_controller();
        init_ts();
        init_debug_mode();
        init_property_worker();
        init_osprin_if();
        init_automode();
        debug_gate_set(true, 255);
        while (!fia_is_enabled())
            usleep(1000);
        return true;
    }();
    static_cast<void>(started);
}
