// Small operations on sysfs and configuration files, exported to the libraries that the daemon
// loads; the daemon itself calls none of them. They keep no state, and any thread may call. Paths
// are taken as they are.
#pragma once

#include <cstdint>

extern "C" {

// 0 if the path exists, else -EINVAL.
int32_t check_kernel_node(const char *path);

// Reads the first line, its newline included, as far as it fits. The line's length; -1 if the file
// cannot be opened; otherwise the stream's error indicator, 0 at a plain end of file.
int32_t read_line_from_file(const char *path, char *buffer, int32_t size);

// Leaves the first line that contains `needle` in `buffer`; a line longer than the buffer is read
// and tested in pieces. The line's length, its newline included, or -EINVAL.
int32_t read_prop_from_file(const char *path, char *buffer, const char *needle, int32_t size);

// Overwrites the start of an existing file. `length`, or a negative errno value.
int32_t write_to_file(const char *path, const void *data, int64_t length);
}
