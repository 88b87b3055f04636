#include "ipc/outbound/gbm_client.h"

#include <android/log.h>
#include <errno.h>
#include <string.h>

#include "core/connection.h"
#include "core/text.h"
#include "ipc/outbound/outbound.h"

namespace {

constexpr char tag[] = "GBMv2";

constinit outbound_service service = {gbm_service, 0};

int send_command(gbm_group group, uint32_t argument) {
    gbm_message message = {};
    copy_text(message.tag, "Powerhal");
    message.command = group + (argument & 255);
    send_msg_to_gbm(&message);
    return 0;
}

}  // namespace

void send_msg_to_gbm(const gbm_message *message) {
    const int fd = outbound_connect(&service);
    if (fd < 0) {
        __android_log_print(ANDROID_LOG_ERROR, tag, "Failed to connect - %s", strerror(errno));
        return;
    }
    if (outbound_send(fd, message, sizeof(*message)) <= 0)
        __android_log_print(ANDROID_LOG_ERROR, tag,
                            "GBM-Lib-Client: Unable to send request data to fd %d", fd);
    connection_close(fd);
}

int request_gbm_restoration(uint32_t argument) {
    return send_command(gbm_restoration, argument);
}

int send_pkg_status(uint32_t argument) {
    return send_command(gbm_package_status, argument);
}

int gbm_category_set(uint32_t argument) {
    return send_command(gbm_category, argument);
}

int notify_game_optimizer_en(uint32_t argument) {
    return send_command(gbm_game_optimizer, argument);
}

int notify_set_ofmode(uint32_t argument) {
    return send_command(gbm_ofmode, argument);
}

int notify_floating_window_info(uint32_t argument) {
    return send_command(gbm_floating_window, argument);
}

int notify_package_name_to_gbm(const char *package) {
    gbm_message message = {};
    message.type = gbm_type_package;
    copy_text(message.tag, "package_name");
    copy_text(message.package, package);
    send_msg_to_gbm(&message);
    return 0;
}
