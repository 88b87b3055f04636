// Writing to files that belong to somebody else: a reader that has gone (SIGPIPE) or a limit on the
// file's size (SIGXFSZ) costs what was written, not the process.
#pragma once

#include <sys/types.h>

#include <cstddef>

// One write, as write does it. The signal that it raises is taken back, unless the thread holds it
// back for itself. Any thread may call.
ssize_t write_held(int fd, const void *bytes, size_t size);
