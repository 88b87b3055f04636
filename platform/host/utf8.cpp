#include "platform/host/utf8.h"

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
