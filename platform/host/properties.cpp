#include <cutils/properties.h>
#include <limits.h>
#include <string.h>

#include "platform/device_root.h"
#include "platform/host/property_files.h"
#include "platform/host/recording.h"

namespace {

constexpr char device_directory[] = "/properties";

}  // namespace

extern "C" int property_get(const char *key, char *value, const char *default_value) {
    char directory[PATH_MAX];
    value[0] = '\0';
    const size_t length = device_path(directory, sizeof(directory), device_directory) == 0
                              ? property_file_read(directory, key, value)
                              : 0;
    recording_note_lookup(key, value);
    if (length > 0)
        return static_cast<int>(length);
    if (default_value == nullptr)
        return 0;
    const size_t default_length = strnlen(default_value, PROPERTY_VALUE_MAX - 1);
    memcpy(value, default_value, default_length);
    value[default_length] = '\0';
    return static_cast<int>(default_length);
}

extern "C" int property_set(const char *key, const char *value) {
    char directory[PATH_MAX];
    if (device_path(directory, sizeof(directory), device_directory) != 0)
        return -1;
    const int result = property_file_write(directory, key, value);
    if (result == 0)
        recording_note_property(key, value);
    return result;
}
