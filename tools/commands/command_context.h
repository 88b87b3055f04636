// What headers of commands pass on: names of the command-line library, which takes seconds to
// compile where it is included, and what all commands share.
#pragma once

#include <string>

namespace CLI {
class App;
class Option;
}  // namespace CLI

// What was said before the command, and what it comes to; it outlives the parsing.
struct command_context {
    std::string root;  // the device's directory; empty: none
    bool root_is_needed = false;
    int exit_code = 0;
};
