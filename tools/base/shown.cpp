#include "tools/base/shown.h"

#include <stdio.h>

#include <algorithm>

#include "platform/host/utf8.h"

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
