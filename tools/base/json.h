// JSON as it comes in and goes out: a limit to its depth, numbers that fit, and text that is no
// UTF-8 made so.
#pragma once

#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>

// Parses a text. Discarded (is_discarded) where it is no JSON, or nested deeper than anything here
// is.
nlohmann::ordered_json json_read(std::string_view text);

// On one line.
std::string json_write(const nlohmann::ordered_json &value);

// The whole number that a value is: throws std::out_of_range where it is none, or not one from
// `least` to `most`. A number such as 1e3 is whole.
int64_t json_integer(const nlohmann::ordered_json &value, int64_t least, int64_t most);

template <typename number>
number json_integer(const nlohmann::ordered_json &value) {
    return static_cast<number>(json_integer(value, std::numeric_limits<number>::min(),
                                            std::numeric_limits<number>::max()));
}
