// The one handle to the hardware resource library, and the binding of its entry points. Opened on
// first use and never closed. Start-up (main and the load-time constructors) uses it, one step
// after the other; nothing is locked.
#pragma once

#include <errno.h>

// Opens the library if it is not open yet. 0 when there is a handle afterwards, else -EINVAL.
int get_handle(void);

// Whether the library is open.
bool hw_library_is_open(void);

// The entry point of that name, or null with a log line.
void *hw_library_symbol(const char *symbol);

// Binds one entry point, unless `*entry` is bound already. 0, or -EINVAL with a log line.
template <typename function>
int hw_library_bind(const char *symbol, function **entry) {
    if (*entry == nullptr)
        *entry = reinterpret_cast<function *>(hw_library_symbol(symbol));
    return *entry != nullptr ? 0 : -EINVAL;
}
