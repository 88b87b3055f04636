// Everything that the daemon touches on its device, with what hangs on it.
#pragma once

#include <string>
#include <vector>

enum touched_kind {
    touched_library,    // opened at the start, from /vendor/lib or /vendor/lib64
    touched_linked,     // linked with the daemon
    touched_extension,  // opened from where a property says
    touched_node,       // a kernel node that is waited on
    touched_read,       // a property that is read
    touched_set,        // a property that is set
    touched_served,     // a local socket
    touched_called,     // a local socket of another service
};

// One feature's share of a thing: what it needs of it, and what is off without that. Words that
// follow "without it:".
struct touched {
    touched_kind kind;
    const char *name;
    std::vector<const char *> symbols;  // of a library; else none
    const char *without;
};

extern const std::vector<touched> everything_touched;
