#include "core/start/start_steps.h"

#include "context/activity_trigger.h"
#include "context/running_app.h"
#include "core/debug_mode.h"
#include "core/event_manager.h"
#include "core/log.h"
#include "features/automode.h"
#include "features/dfrc_if.h"
#include "features/event_trigger.h"
#include "features/image_enhance_controller.h"
#include "features/low_power_mode.h"
#include "features/merlak_if.h"
#include "features/osprin_if.h"
#include "features/profile_controller.h"
#include "features/profile_manager.h"
#include "features/property_worker.h"
#include "features/thermal_control.h"
#include "fia/clock_manager.h"
#include "fia/lifecycle.h"
#include "ipc/client_handlers.h"
#include "ipc/client_server.h"
#include "ipc/kernel_event_monitor.h"
#include "resource/acceptor.h"
#include "resource/fps_manager.h"
#include "resource/ie_manager.h"
#include "resource/policy.h"

namespace {

enum step_kind { core, optional };

// A step answers a negative value on failure: `failure` is logged then, and a core step ends the
// daemon. `on_success` is what hangs on the step; its failure ends the daemon too.
struct start_step {
    int (*operation)(void);
    step_kind kind;
    int priority;
    const char *failure;
    int (*on_success)(void);
};

// Only what is core here can fail: whoever else hangs on a manager is missed and that is all.
int attach_fps_manager() {
    if (add_acceptor("fps", fps_manager_set_grant) != 0)
        return -1;
    init_dfrc_if();
    return 0;
}

int attach_ie_manager() {
    if (add_acceptor("off_image_enhancer", ie_manager_set_grant) != 0)
        return -1;
    init_image_enhance_controller();
    return 0;
}

int start_analyser() {
    init_fia();
    return 0;
}

constexpr int error = ANDROID_LOG_ERROR;
constexpr int info = ANDROID_LOG_INFO;

constexpr char no_monitor[] = "Failed to init kernel event monitor..\n";

// In their order: a step may rely on those before it.
// clang-format off
constexpr start_step steps[] = {
    {init_event_manager, core, error, "Failed to init event manager..\n", nullptr},
    {start_fps_manager, optional, error, "Failed to init fps manager..\n", attach_fps_manager},
    {init_merlak_if, optional, error, "This device does not support merlak.", nullptr},
    {start_ie_manager, optional, error, "Failed to init ie manager..\n", attach_ie_manager},
    {init_fia_clock_manager, optional, error, "Failed to init fia clock manager..\n", start_analyser},
    {server_init, core, error, "Failed to init server..\n", nullptr},
    {init_kevent_monitor, core, error, no_monitor, nullptr},
    {init_fevent_monitor, core, error, no_monitor, nullptr},
    {init_activity_trigger, optional, info, "No Supporting AT", nullptr},
    {init_el, core, error, "Failed to init running app manager..\n", nullptr},
    {start_policy_manager, core, error, "Failed to init policy manager...\n", nullptr},
    {init_profile_controller, optional, info, "No Supporting PC", nullptr},
    {init_ts, optional, info, "No Supporting TS", nullptr},
    {init_debug_mode, optional, info, nullptr, nullptr},
    {init_property_worker, optional, info, nullptr, nullptr},
    {init_osprin_if, optional, info, "No support osprin control", nullptr},
    {init_automode, optional, info, "No support automode control", nullptr},
    {init_event_trigger, optional, info, nullptr, nullptr},
};
// clang-format on

// Runs one step. False when the daemon cannot go on.
bool run_step(const start_step &step) {
    if (step.operation() >= 0)
        return step.on_success == nullptr || step.on_success() >= 0;
    if (step.failure != nullptr)
        __android_log_print(step.priority, LOG_TAG, "%s", step.failure);
    return step.kind == optional;
}

}  // namespace

void prepare_daemon(void) {
    init_profile_manager_ext();
    init_lpm_config();
}

int start_daemon(void) {
    for (const start_step &step : steps)
        if (!run_step(step))
            return -1;
    log_error("Halvane Start Successfully.");
    return 0;
}
