// Texts in JSON, byte for byte: what is not UTF-8 goes as U+F780 and upwards, a byte each.
#pragma once

#include <cstddef>
#include <string>

// Appends a text with its quotes.
void append_json_text(std::string *line, const char *text, size_t length);

// The bytes of a text that was written so and has been read as JSON.
std::string bytes_of_json_text(const std::string &text);
