// Texts in fixed fields. Nothing else in the daemon copies texts, so that every field is cut and
// terminated in one way. Any thread may call; the texts belong to the caller.
#pragma once

#include <cstddef>
#include <cstdint>

// Copies at most `size` - 1 characters of `text` to `field` and fills the rest with NUL. At most
// `size` - 1 characters of `text` are read, so it need not be terminated within its own field.
void copy_text(char *field, size_t size, const char *text);

template <size_t size>
void copy_text(char (&field)[size], const char *text) {
    copy_text(field, size, text);
}

// The next part of a text between separators, cut off in place; leading separators are skipped.
// `cursor` moves behind the part. Null when there is none.
char *next_token(char **cursor, char separator);

// The decimal integer that a text begins with, 0 when it begins with none; what does not fit is the
// nearest number that does.
int32_t leading_integer(const char *text);
