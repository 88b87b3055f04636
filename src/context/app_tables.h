// The apps that the activity trigger recognises by the name of their window, and what it raises
// when they come and go. Constant data, read once at start-up.
#pragma once

#include <cstddef>

constexpr size_t package_name_size = 512;

using trigger_action = void (*)(void);

struct at_entry {
    const char *package;  // of the constant table
    trigger_action on;
    trigger_action off;
};

// The next record of the table: 0, or -1 when all have been read. Each table can be read once.
int get_at_configuration_for_common_app(at_entry *entry);
int get_at_configuration_for_app(at_entry *entry);
