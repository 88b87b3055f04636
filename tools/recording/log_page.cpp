// Prints docs/log.md, which scripts/log-page keeps.
#include <stdio.h>

#include <string>

#include "tools/recording/log_lines.h"

namespace {

constexpr char introduction[] = R"(# Log lines

Every line that the daemon can log, as its sources format it: `%d` and the like stand for values.
Lines are tagged Quorvel, but for three of other services, which say so. The priority is that of
the platform's log; of lines marked "debug" it is information, and they are written while
`debug.dvxd_log.enable` is not 0 and `debug.dvxd_log.mode` has the bit of their group: 1 for group
0, 32 for group 5, 128 for group 7. "Failure" marks what says that something is wrong: some errors
do not. A line says what its meaning says, and no more: that a cap moves, for one, has no line of
its own, and is seen in the calls of the hardware library alone.

"The line before" is the line before on the same thread. "Mode", "event" and "profile" are told in
[architecture](architecture.md), [events](events.md) and [features](features.md).
)";

// A cell of a table cannot hold a bar as it is.
std::string escape(const char *pattern) {
    std::string cell;
    for (; *pattern != '\0'; ++pattern)
        cell.append(*pattern == '|' ? "\\" : "").push_back(*pattern);
    return cell;
}

}  // namespace

int main() {
    printf("%s", introduction);
    for (int id = 0; id < static_cast<int>(log_line::count); ++id) {
        const log_row &row = log_row_of(static_cast<log_line>(id));
        if (id == 0 || log_row_of(static_cast<log_line>(id - 1)).subject != row.subject)
            printf("\n## %s\n\n| line | priority | meaning |\n|---|---|---|\n",
                   log_subject_title(row.subject));
        printf("| `%s` | %s%s | %s |\n", escape(row.pattern).c_str(),
               log_priority_words(row.priority), row.failure ? ", failure" : "", row.meaning);
    }
    return 0;
}
