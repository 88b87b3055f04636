// The tool's own inputs: frame files and logs.
#include <gtest/gtest.h>

#include <sstream>

#include "tools/frames.h"
#include "tools/messages.h"
#include "tools/timeline.h"

namespace {

frame_file frames_of(const std::string &text, const std::string &column = "", double unit = 1) {
    std::istringstream input(text);
    return read_frames(input, column, unit);
}

TEST(FrameFiles, AreReadWholeOrRefusedWhole) {
    EXPECT_EQ(frames_of("16666\n\n 33333 \r\n-5\n").intervals_us,
              (std::vector<int64_t>{16666, 33333, -5}));
    EXPECT_EQ(frames_of("16.66\n8.35\n", "", 1000).intervals_us,
              (std::vector<int64_t>{16660, 8350}));
    EXPECT_EQ(frames_of("App,\"ms\",x\na,16.5,1\nb,17,2\n", "ms", 1000).intervals_us,
              (std::vector<int64_t>{16500, 17000}));
    EXPECT_EQ(frames_of("a,b\n1,2\n", "c").error, "no column 'c' in line 1");
    EXPECT_EQ(frames_of("16666\nfast\n").error, "line 2: not an interval: 'fast'");
    EXPECT_EQ(frames_of("a,b\n1\n", "b").error, "line 2: not an interval: ''");
    EXPECT_NE(frames_of("99999999999\n").error, "");
    EXPECT_NE(frames_of("nan\n").error, "");
}

TEST(Timeline, ReadsTheDaemonsLog) {
    const timeline_entry event =
        parse_daemon_line("11-22 19:32:10.123  1234  1240 I Quorvel : EV : 43", 0);
    EXPECT_EQ(event.kind, timeline_event);
    EXPECT_EQ(event.text, "43 EV_MODE_GAME_DEFAULT");
    const timeline_entry later =
        parse_daemon_line("11-22 19:32:11.125  1234  1240 E Quorvel : J: 6, JT: 5", 0);
    EXPECT_EQ(later.kind, timeline_log);
    EXPECT_EQ(later.text, "J: 6, JT: 5");
    EXPECT_EQ(later.time_ms - event.time_ms, 1002);
    EXPECT_EQ(parse_daemon_line("11-22 19:32:10.123 1 1 I Quorvel : EV : 77", 0).text, "77 ?");
    EXPECT_EQ(parse_daemon_line("something else", 7).time_ms, 7);
}

TEST(Messages, AreDescribedAsTheyAreSent) {
    EXPECT_EQ(describe_message(make_message("powerhal", 0, {1, 1, 45}), false),
              "powerhal 0 1 1 45");
    EXPECT_EQ(describe_message(make_message("a-client-of-more-than-19", 8, {}), false),
              "a-client-of-more-th 8 0");
    EXPECT_EQ(describe_message(make_text_message("powerhal", 4, std::string(300, 'w')), true),
              "powerhal 4 " + std::string(255, 'w'));
}

}  // namespace
