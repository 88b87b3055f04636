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

// Length of the whole UTF-8 sequence that `text` begins with, and the character that it stands for;
// 0 where it begins with none.
size_t utf8_length(std::string_view text, char32_t *character);
