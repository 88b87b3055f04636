#include "tools/base/words.h"

#include <stdlib.h>

#include <algorithm>

namespace {

constexpr double slowest = 0.001;  // times real time
constexpr double fastest = 1000;

// The least number of changes that make one of the other; rows of the usual table, of which the
// last three are kept.
size_t distance(const std::string &a, const std::string &b) {
    std::vector<size_t> before_last(b.size() + 1);
    std::vector<size_t> last(b.size() + 1);
    std::vector<size_t> row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (size_t i = 1; i <= a.size(); ++i) {
        before_last = last;
        last = row;
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t exchanged = last[j - 1] + (a[i - 1] != b[j - 1] ? 1 : 0);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, exchanged});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], before_last[j - 2] + 1);
        }
    }
    return row[b.size()];
}

}  // namespace

std::string nearest_word(const std::string &typed, const std::vector<std::string> &words) {
    std::string nearest;
    size_t least = typed.size() / 3 + 2;  // as many changes make another word of it
    for (const std::string &word : words) {
        const size_t changes = distance(typed, word);
        if (changes < least && changes < word.size()) {
            least = changes;
            nearest = word;
        }
    }
    return nearest;
}

std::string trimmed_text(const std::string &text) {
    const size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r") + 1 - first);
}

std::string counted(size_t count, const char *thing) {
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

std::string short_number(double value) {
    char text[32];
    snprintf(text, sizeof(text), "%.9g", value);
    return text;
}

std::string check_speed(const std::string &text, const std::string &unreal) {
    char *end = nullptr;
    const double factor = strtod(text.c_str(), &end);
    if (text == unreal || text == "real" ||
        (factor >= slowest && factor <= fastest && end != text.c_str() && *end == '\0'))
        return {};
    return "'" + text + "' is neither real nor " + unreal + " nor a factor from 0.001 to 1000";
}

double parse_speed(const std::string &text, const std::string &unreal) {
    return text == unreal ? 0 : text == "real" ? 1 : strtod(text.c_str(), nullptr);
}
