#include "ipc/outbound/merlak_client.h"

#include <errno.h>

#include "core/connection.h"
#include "core/text.h"
#include "ipc/outbound/outbound.h"

namespace {

constinit outbound_service service = {merlak_service, 0};

}  // namespace

int request_to_merlak(uint32_t command, uint32_t value) {
    merlak_message message = {};
    const int fd = outbound_connect(&service);
    if (fd < 0)
        return -EINVAL;
    copy_text(message.sender, "merlak-client");
    message.command = command;
    message.value = value;
    const long sent = outbound_send(fd, &message, sizeof(message));
    connection_close(fd);
    return sent < 1 ? -EINVAL : 0;
}
