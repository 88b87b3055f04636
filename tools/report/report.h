// `dvxctl report`: one page that shows what the daemon did to a game, or to two.
#pragma once

#include <string>
#include <vector>

struct report_options {
    std::vector<std::string> files;     // one or two
    std::vector<std::string> settings;  // NAME=VALUE of a replay that is the second
    std::string out;
};

// dvxctl's command. Its exit status: 0; 1 where the page cannot be written; 2 for words and files
// of no use.
int report_command(const report_options &options);
