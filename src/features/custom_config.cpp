#include "features/custom_config.h"

#include <dlfcn.h>
#include <errno.h>
#include <string.h>

#include <cstdint>

#include "core/log.h"
#include "core/vendor_library.h"
#include "platform/device_root.h"
#include "resource/thermal_engine.h"

// The library's record.
struct custom_config {
    char config_name[256];   // an action of the table below
    char config_value[256];  // its argument
};

namespace {

struct config_action {
    const char *name;
    int32_t (*action)(const char *value, int32_t on);
};

constexpr config_action action_cb_table[] = {
    {"TCONF_ENABLE", enable_thermal_config},
};

constinit struct {
    void *handle = nullptr;
    int (*init_white_list)(void) = nullptr;
    int (*get_custom_config)(const char *activity, struct custom_config *out) = nullptr;
    custom_config current = {};
} library;

// Switches what a configuration means; one without an action means nothing. 0, or the failure.
int32_t switch_config(const custom_config &config, int32_t on) {
    for (const config_action &row : action_cb_table)
        if (row.action != nullptr &&
            strncmp(row.name, config.config_name, sizeof(config.config_name)) == 0)
            return row.action(config.config_value, on);
    return 0;
}

template <typename function>
int bind(const char *symbol, function **entry) {
    if (*entry == nullptr)
        *entry = reinterpret_cast<function *>(device_library_symbol(library.handle, symbol));
    if (*entry != nullptr)
        return 0;
    log_error("dlsym failed!, %s\n", dlerror());
    return -EINVAL;
}

}  // namespace

int set_custom_config(const char *activity) {
    if (library.get_custom_config == nullptr) {
        log_error("dlsym not finished!\n");
        return -EINVAL;
    }
    custom_config wanted = {};
    const bool exists = library.get_custom_config(activity, &wanted) != 0;
    wanted.config_name[sizeof(wanted.config_name) - 1] = '\0';  // whatever the library wrote
    wanted.config_value[sizeof(wanted.config_value) - 1] = '\0';
    if (switch_config(library.current, 0) != 0) {
        log_info("restoring failed\n");
        return 0;
    }
    if (!exists) {
        library.current = {};
        return 0;
    }
    if (switch_config(wanted, 1) != 0) {
        log_info("config set failed : %s, %s\n", wanted.config_name, wanted.config_value);
        return 0;
    }
    log_info("config set complete : %s, %s\n", wanted.config_name, wanted.config_value);
    library.current = wanted;
    return 0;
}

int custom_config_init(void) {
    if (library.handle == nullptr)
        library.handle = vendor_library_open("libdvxcc.so", "", "");
    if (library.handle == nullptr)
        return -ENOENT;
    if (bind("init_white_list", &library.init_white_list) != 0 ||
        bind("get_custom_config", &library.get_custom_config) != 0)
        return -EINVAL;
    return library.init_white_list() != 0 ? 0 : -1;
}
