// A phone's nodes are attributes: waited for as poll has it, and read from their start each time.
#include "platform/kernel_node.h"

#include <fcntl.h>
#include <unistd.h>

struct kernel_node kernel_node_open(const char *path) {
    return {open(path, O_RDONLY | O_CLOEXEC), -1, true};
}

struct pollfd kernel_node_poll(const struct kernel_node *node) {
    return {node->fd, POLLPRI | POLLERR, 0};
}

bool kernel_node_signalled(const struct kernel_node *, short revents) {
    return (revents & POLLPRI) != 0;
}

void kernel_node_read(const struct kernel_node *node, char *report, size_t size) {
    const ssize_t count = read(node->fd, report, size);
    const size_t length = count > 0 ? static_cast<size_t>(count) : 0;
    report[length < size ? length : size - 1] = '\0';
    lseek(node->fd, 0, SEEK_SET);
}

void kernel_node_close(struct kernel_node *node) {
    if (node->fd >= 0)
        close(node->fd);
    node->fd = -1;
}
