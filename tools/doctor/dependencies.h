// Everything that the daemon touches on its device, with what hangs on it.
#pragma once

#include <string>
#include <vector>

enum class dependency_kind {
    library,    // opened at the start, from /vendor/lib or /vendor/lib64
    linked,     // linked with the daemon
    extension,  // opened from where a property says
    node,       // a kernel node that is waited on
    read,       // a property that is read
    set,        // a property that is set
    served,     // a local socket
    called,     // a local socket of another service
};

// One feature's share of a thing: what it needs of it, and what is off without that. Words that
// follow "without it:".
struct dependency {
    dependency_kind kind;
    const char *name;
    std::vector<const char *> symbols;  // of a library; else none
    const char *without;
};

extern const std::vector<dependency> dependencies;
