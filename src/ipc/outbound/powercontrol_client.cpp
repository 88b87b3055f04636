#include "ipc/outbound/powercontrol_client.h"

#include <android/log.h>
#include <errno.h>

#include "core/connection.h"
#include "core/text.h"
#include "ipc/outbound/outbound.h"

namespace {

constinit outbound_service service = {powercontrol_service, 0};

}  // namespace

int request_to_powercontrol_hal(const powercontrol_message *message) {
    const int fd = outbound_connect(&service);
    if (fd < 0)
        return -EINVAL;
    const long sent = outbound_send(fd, message, sizeof(*message));
    connection_close(fd);
    return sent < 1 ? -EINVAL : 0;
}

int notify_to_framework_max_brightness(int32_t first, int32_t second) {
    __android_log_print(ANDROID_LOG_INFO, "Powercontrol_Client", "Notify Brightness %d:%d", first,
                        second);
    powercontrol_message message = {};
    copy_text(message.sender, "dvx");
    message.first = first;
    message.second = second;
    request_to_powercontrol_hal(&message);
    return 0;
}
