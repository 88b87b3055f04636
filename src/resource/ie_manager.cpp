#include "resource/ie_manager.h"

#include <errno.h>

#include "core/log.h"
#include "resource/hw_library.h"
#include "resource/requestor.h"

namespace {

constexpr int32_t mode_off = 0;

constinit struct {
    requestor *list = nullptr;
    int (*init_hw_img_enhance_engine_ctrl)(void) = nullptr;
    int (*request_image_engine_mode)(int mode) = nullptr;
} manager;

// The mode of the first granted requestor that asks for one.
int32_t resolve_mode() {
    for (const requestor *voter = manager.list; voter != nullptr; voter = voter->next) {
        const int32_t mode = voter->value.load(std::memory_order_relaxed);
        if (voter->grant.load(std::memory_order_relaxed) != 0 && mode != mode_off)
            return mode;
    }
    return mode_off;
}

void update_image_engine() {
    const int32_t mode = resolve_mode();
    if (manager.request_image_engine_mode != nullptr)
        manager.request_image_engine_mode(mode);
    else if (mode == mode_off)
        log_error("No Set Funtion");
}

}  // namespace

int requestor_request_ie(int32_t id, int32_t mode) {
    if (requestor_request_value(manager.list, id, mode) != 0)
        return -EINVAL;
    update_image_engine();
    return 0;
}

int ie_manager_set_grant(int32_t id, int32_t grant) {
    log_info("IE Manager - Acceptor %d set grant %d", id, grant);
    if (resource_manager_set_grant(manager.list, id, grant) != 0)
        return -EINVAL;
    update_image_engine();
    return 0;
}

int start_ie_manager(void) {
    if (get_handle() != 0 ||
        hw_library_bind("init_hw_img_enhance_engine_ctrl",
                        &manager.init_hw_img_enhance_engine_ctrl) != 0 ||
        hw_library_bind("request_image_engine_mode", &manager.request_image_engine_mode) != 0)
        return -EINVAL;
    if (manager.init_hw_img_enhance_engine_ctrl() < 0)
        return -EINVAL;
    manager.list = add_voter(manager.list, requestor_image_enhance, mode_off);
    print_resource_list(manager.list, "ie_manager");
    return 0;
}
