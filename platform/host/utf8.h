// UTF-8, a character at a time.
#pragma once

#include <cstddef>
#include <string_view>

// Length of the sequence that `text` begins with, and the character that it stands for; 0 where it
// begins with none: a surrogate, a sequence that is longer than it needs to be, or one that is cut.
size_t utf8_length(std::string_view text, char32_t *character);
