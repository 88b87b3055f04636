// Text from outside as people and terminals may see it: apps choose the names of their windows, and
// files hold whatever somebody wrote into them.
#pragma once

#include <string>
#include <string_view>

// The text on one line: control characters (of both kinds, a line's end and an escape among them),
// bytes that are no UTF-8, and characters that turn or break a line's order are written as "\n",
// "\x1b", "\u202e"; ends of lines behind it are left out. Everything that goes to a terminal or
// into a table's cell passes through here.
std::string shown(std::string_view text);
