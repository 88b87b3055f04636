#include "tools/base/json.h"

#include <cmath>

using nlohmann::ordered_json;

namespace {

constexpr int depth_max = 64;

// The library's own limit is the stack, which it meets where it copies or frees a value.
bool is_too_deep(std::string_view text) {
    int depth = 0;
    bool quoted = false;
    for (size_t at = 0; at < text.size(); ++at) {
        const char letter = text[at];
        if (quoted)
            at += letter == '\\' ? 1 : 0;
        else if (letter == '{' || letter == '[')
            ++depth;
        else if (letter == '}' || letter == ']')
            --depth;
        if (letter == '"')
            quoted = !quoted;
        if (depth > depth_max)
            return true;
    }
    return false;
}

}  // namespace

ordered_json json_read(std::string_view text) {
    if (is_too_deep(text))
        return {ordered_json::value_t::discarded};
    return ordered_json::parse(text, nullptr, false);
}

std::string json_write(const ordered_json &value) {
    return value.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

int64_t json_integer(const ordered_json &value, int64_t least, int64_t most) {
    constexpr double exact_max = 9e15;  // whole numbers up to here are exact as doubles
    int64_t number = 0;
    if (value.is_number_unsigned() && value.get<uint64_t>() <= INT64_MAX)
        number = static_cast<int64_t>(value.get<uint64_t>());
    else if (value.is_number_integer() && !value.is_number_unsigned())
        number = value.get<int64_t>();
    else if (value.is_number_float() && std::fabs(value.get<double>()) <= exact_max &&
             std::trunc(value.get<double>()) == value.get<double>())
        number = static_cast<int64_t>(value.get<double>());
    else
        throw std::out_of_range("no whole number");
    if (number < least || number > most)
        throw std::out_of_range("a number out of range");
    return number;
}
