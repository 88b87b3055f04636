#include "tools/base/shown.h"

#include <stdio.h>

#include <algorithm>

namespace {

// Marks that change the direction of what follows, and ends of lines and paragraphs.
bool is_disorderly(char32_t character) {
    return character == 0x61C || (character >= 0x200E && character <= 0x200F) ||
           (character >= 0x2028 && character <= 0x202E) ||
           (character >= 0x2066 && character <= 0x2069);
}

void append_escape(std::string *said, const char *format, unsigned number) {
    char escape[12];
    snprintf(escape, sizeof(escape), format, number);
    *said += escape;
}

}  // namespace

size_t utf8_length(std::string_view text, char32_t *character) {
    if (text.empty())
        return 0;
    const auto byte = [&](size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned lead = byte(0);
    *character = lead;
    if (lead < 0x80)
        return 1;
    const size_t length = lead >= 0xF0 && lead < 0xF5   ? 4
                          : lead >= 0xE0 && lead < 0xF0 ? 3
                          : lead >= 0xC2 && lead < 0xE0 ? 2
                                                        : 0;
    if (length == 0 || length > text.size())
        return 0;
    *character = lead & (0xFFu >> (length + 1));
    for (size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
        *character = *character << 6 | (byte(i) & 0x3F);
    }
    const bool surrogate = *character >= 0xD800 && *character < 0xE000;
    const bool shortest = length == 2 || (length == 3 && *character >= 0x800) ||
                          (length == 4 && *character >= 0x10000 && *character < 0x110000);
    return shortest && !surrogate ? length : 0;
}

std::string shown(std::string_view text) {
    std::string said;
    said.reserve(text.size());
    while (text.ends_with('\n'))
        text.remove_suffix(1);
    while (!text.empty()) {
        char32_t character;
        const size_t length = utf8_length(text, &character);
        if (length == 0)
            append_escape(&said, "\\x%02x", static_cast<unsigned char>(text[0]));
        else if (character == '\n')
            said += "\\n";
        else if (character < ' ' || (character >= 0x7F && character < 0xA0))
            append_escape(&said, "\\x%02x", character);
        else if (is_disorderly(character))
            append_escape(&said, "\\u%04x", character);
        else
            said += text.substr(0, length);
        text.remove_prefix(std::max<size_t>(length, 1));
    }
    return said;
}
