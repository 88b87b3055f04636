#include "platform/host/json_text.h"

#include <stdio.h>

#include "platform/host/utf8.h"

namespace {

constexpr unsigned raw_base = 0xF700;  // with a byte from 0x80 on: a private use of Unicode

unsigned byte_at(const char *text, size_t at) {
    return static_cast<unsigned char>(text[at]);
}

// Length of the UTF-8 sequence at `at`; 0 where there is none, or one that stands for a byte.
size_t sequence_length(const char *text, size_t at, size_t length) {
    char32_t code = 0;
    const size_t size = utf8_length({text + at, length - at}, &code);
    return code >= raw_base + 0x80 && code <= raw_base + 0xFF ? 0 : size;
}

void append_escaped(std::string *line, unsigned code) {
    char escaped[8];
    snprintf(escaped, sizeof(escaped), "\\u%04x", code);
    *line += escaped;
}

}  // namespace

void append_json_text(std::string *line, const char *text, size_t length) {
    *line += '"';
    for (size_t at = 0; at < length; ++at) {
        const char letter = text[at];
        if (letter == '"' || letter == '\\') {
            *line += '\\';
            *line += letter;
        } else if (letter == '\n') {
            *line += "\\n";
        } else if (byte_at(text, at) < ' ' || letter == 0x7F) {
            append_escaped(line, byte_at(text, at));
        } else if (byte_at(text, at) < 0x80) {
            *line += letter;
        } else if (const size_t size = sequence_length(text, at, length); size != 0) {
            line->append(text + at, size);
            at += size - 1;
        } else {
            append_escaped(line, raw_base + byte_at(text, at));
        }
    }
    *line += '"';
}

std::string bytes_of_json_text(const std::string &text) {
    std::string bytes;
    for (size_t at = 0; at < text.size(); ++at) {
        // U+F780 to U+F7FF are EF 9E 80 to EF 9F BF.
        const bool raw = at + 2 < text.size() && byte_at(text.c_str(), at) == 0xEF &&
                         (byte_at(text.c_str(), at + 1) & 0xFE) == 0x9E;
        if (!raw) {
            bytes += text[at];
            continue;
        }
        const unsigned code =
            (byte_at(text.c_str(), at + 1) & 0x3F) << 6 | (byte_at(text.c_str(), at + 2) & 0x3F);
        bytes += static_cast<char>(code & 0xFF);
        at += 2;
    }
    return bytes;
}
