#include "platform/kernel_node.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/device_root.h"

void kernel_node_close(struct kernel_node *node) {
    if (node->fd >= 0)
        close(node->fd);
    if (node->writer_fd >= 0)
        close(node->writer_fd);
    node->fd = node->writer_fd = -1;
}

struct kernel_node kernel_node_open(const char *path) {
    kernel_node node = {-1, -1, true};
    char host_path[PATH_MAX];
    if (device_path(host_path, sizeof(host_path), path) != 0)
        return node;
    struct stat status;
    node.fd = open(host_path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (node.fd < 0 || fstat(node.fd, &status) != 0 || !S_ISFIFO(status.st_mode))
        return node;
    node.writer_fd = open(host_path, O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    node.rewind = false;
    if (node.writer_fd < 0)
        kernel_node_close(&node);
    return node;
}

struct pollfd kernel_node_poll(const struct kernel_node *node) {
    return {node->fd, static_cast<short>(node->rewind ? POLLPRI | POLLERR : POLLIN), 0};
}

bool kernel_node_signalled(const struct kernel_node *node, short revents) {
    return (revents & (node->rewind ? POLLPRI : POLLIN)) != 0;
}

void kernel_node_read(const struct kernel_node *node, char *report, size_t size) {
    // A pipe's report is taken whole even where the end of it is cut off.
    const ssize_t count = read(node->fd, report, size);
    const size_t length = count > 0 ? static_cast<size_t>(count) : 0;
    report[length < size ? length : size - 1] = '\0';
    if (node->rewind)
        lseek(node->fd, 0, SEEK_SET);
}
