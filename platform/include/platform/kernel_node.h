// Kernel nodes that report changes: on a phone a sysfs attribute that signals through poll, on a
// virtual device a named pipe in which every write is one report. Which of the two it is, the
// opened file tells. A node belongs to the thread that opened it.
#pragma once

#include <poll.h>

#include <cstddef>

struct kernel_node {
    int fd;         // -1: not open; poll passes over it
    int writer_fd;  // holds a pipe open, so that its last writer's leaving ends no wait; else -1
    bool rewind;    // an attribute is read from its start each time
};

// Opens the device's node `path` read-only for waiting; `fd` is -1 when it cannot be opened.
struct kernel_node kernel_node_open(const char *path);

// What poll is to wait for on this node.
struct pollfd kernel_node_poll(const struct kernel_node *node);

// Whether what poll returned means a report.
bool kernel_node_signalled(const struct kernel_node *node, short revents);

// Reads one report of at most `size` bytes and terminates it, cut by a byte where it fills them; a
// failed read leaves it empty.
void kernel_node_read(const struct kernel_node *node, char *report, size_t size);

// Closes what is open; the node may be opened again.
void kernel_node_close(struct kernel_node *node);
