// The table of log lines: each text of a log is the line that has formatted it.
#include <gtest/gtest.h>

#include <regex>

#include "tools/recording/log_lines.h"

namespace {

using values = std::vector<std::string>;

std::string say(const std::string &text) {
    const log_match match = log_line_match(text);
    return log_line_sentence(*match.row, match.values);
}

TEST(LogLines, EachTextIsTheLineThatFormattedIt) {
    const std::regex conversions("%(\\d*)l?([dusxc])");
    for (int id = 0; id < static_cast<int>(log_line::count); ++id) {
        const log_row &row = log_row_of(static_cast<log_line>(id));
        EXPECT_EQ(row.id, static_cast<log_line>(id));
        for (const auto &[number, word] : {std::pair("7", "CF60 b7 %d"), std::pair("0", "")}) {
            std::string text = row.pattern;
            values expected;
            for (std::smatch found; std::regex_search(text, found, conversions);) {
                expected.push_back(found[2] == "s" ? word : number);
                text = std::string(found.prefix()) +
                       std::regex_replace(expected.back(), std::regex("%"), "\001") +
                       std::string(found.suffix());
            }
            text = std::regex_replace(text, std::regex("%%|\001"), "%");
            const log_match match = log_line_match(text);
            ASSERT_EQ(match.row, &row) << text;
            EXPECT_EQ(match.values, expected) << text;
            const std::string sentence = log_line_sentence(row, match.values);
            EXPECT_EQ(sentence.empty(), row.sentence == nullptr) << text;
            EXPECT_EQ(sentence.find_first_of("{}|"), std::string::npos) << sentence;
        }
    }
}

TEST(LogLines, ValuesAreCapturedAsTheyStand) {
    const std::pair<const char *, values> texts[] = {
        {"|    9  |     1   |   900  |        0  |  184467  |\n\n",
         {"9", "1", "900", "0", "184467"}},
        {"CF60 b-1", {"60", "-1"}},
        {"EV : 1 NEW at 3 NEW at 4", {"EV : 1 NEW at 3", "4"}},
        {"App Name a, Prof 1, Prof 2", {"a, Prof 1", "2"}},
    };
    for (const auto &[text, expected] : texts)
        EXPECT_EQ(log_line_match(text).values, expected) << text;
    for (const char *text : {"", "\n", "EV : ", "EV : -", "EV : 4 3", "something else", " EV : 4"})
        EXPECT_EQ(log_line_match(text).row, nullptr) << text;
    EXPECT_EQ(say("CF60 b-1"),
              "the frame rate becomes 60 frames per second, as nobody asks for less");
    EXPECT_EQ(say(" NEW at 4"), "(empty) is new to the analyser");
    EXPECT_EQ(say("FIA lock2 locked"), "a reason to suspend the analysis: no game is in front");
}

}  // namespace
