#include "core/text.h"

#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <limits>

void copy_text(char *field, size_t size, const char *text) {
    const size_t length = strnlen(text, size - 1);
    memcpy(field, text, length);
    memset(field + length, 0, size - length);
}

char *next_token(char **cursor, char separator) {
    char *token = *cursor;
    while (*token == separator)
        ++token;
    if (*token == '\0')
        return nullptr;
    char *end = strchrnul(token, separator);
    *cursor = *end == '\0' ? end : end + 1;
    *end = '\0';
    return token;
}

int32_t leading_integer(const char *text) {
    using limits = std::numeric_limits<int32_t>;
    const long long value = strtoll(text, nullptr, 10);
    return static_cast<int32_t>(std::clamp<long long>(value, limits::min(), limits::max()));
}
