#include "tools/base/terminal.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>

namespace {

// Columns of a text in UTF-8.
size_t width_of(std::string_view text) {
    return static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xc0) != 0x80; }));
}

void fold_line(std::string_view line, size_t indent, size_t columns, std::string *said) {
    size_t column = 0;
    for (size_t at = 0, end; at < line.size(); at = end) {
        const size_t word = std::min(line.find_first_not_of(' ', at), line.size());
        end = std::min(line.find(' ', word), line.size());
        if (column > indent && column + width_of(line.substr(at, end - at)) > columns) {
            said->append("\n").append(indent, ' ');
            column = indent;
            at = word;
        }
        said->append(line, at, end - at);
        column += width_of(line.substr(at, end - at));
    }
}

}  // namespace

size_t terminal_columns() {
    winsize size = {};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

bool wants_colour() {
    const char *no_colour = getenv("NO_COLOR");
    const char *terminal = getenv("TERM");
    return isatty(STDOUT_FILENO) == 1 && (no_colour == nullptr || no_colour[0] == '\0') &&
           (terminal == nullptr || strcmp(terminal, "dumb") != 0);
}

std::string folded(const std::string &text, size_t indent, size_t columns) {
    if (columns <= indent)
        return text;
    std::string said;
    std::string_view rest = text;
    for (size_t end; (end = rest.find('\n')) != std::string_view::npos;
         rest.remove_prefix(end + 1)) {
        fold_line(rest.substr(0, end), indent, columns, &said);
        said += '\n';
    }
    fold_line(rest, indent, columns, &said);
    return said;
}

void print_folded(const std::string &line, size_t indent) {
    printf("%s\n", folded(line, indent, terminal_columns()).c_str());
}
