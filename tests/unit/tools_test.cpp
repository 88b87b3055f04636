// The tool's own inputs: logs and scenarios.
#include <gtest/gtest.h>

#include <sstream>

#include "tools/base/terminal.h"
#include "tools/recording/effects.h"
#include "tools/recording/messages.h"
#include "tools/recording/timeline.h"
#include "tools/scenario/scenario_match.h"

namespace {

TEST(Timeline, ReadsTheDaemonsLog) {
    const record event = parse_daemon_line("11-22 19:32:10.123  1234  1240 I Quorvel : EV : 43", 0);
    EXPECT_EQ(event.kind, record_kind::event);
    EXPECT_EQ(event.text, "43 EV_MODE_GAME_DEFAULT");
    const record later =
        parse_daemon_line("11-22 19:32:11.125  1234  1240 E Quorvel : J: 6, JT: 5", 0);
    EXPECT_EQ(later.kind, record_kind::log);
    EXPECT_EQ(later.text, "J: 6, JT: 5");
    EXPECT_EQ(later.time_ns - event.time_ns, 1002000000);
    EXPECT_EQ(later.thread, 1240);
    const record exact = parse_daemon_line("11-22 19:32:10.123456  1234  1240 I Quorvel : x", 0);
    EXPECT_EQ(event.time_ns - exact.time_ns, 999000 - 456000);
    EXPECT_EQ(parse_daemon_line("11-22 19:32:10.123 1 1 I Quorvel : EV : 77", 0).text, "77 ?");
    EXPECT_EQ(parse_daemon_line("something else", 7).time_ns, 7);
}

// What a call changes is told once, from the values of a daemon that has just started.
TEST(Effects, AreWhatIsOtherThanBefore) {
    effects present = make_effects();
    const auto told = [&](const record &came) {
        const effect change = note_effect(&present, came);
        return change.setting + ": " + change.before + " -> " + change.value + change.unit;
    };
    const std::pair<const char *, const char *> calls[] = {
        {"request_fps 45", "display: 60 -> 45 frames per second"},
        {"request_fps 45", ":  -> "},
        {"set_tmk_freq TMK_GPU 414000000", "cap of TMK_GPU: 710 -> 414 MHz"},
        {"set_tmk_freq TMK_CLUSTER0 1612800", "cap of TMK_CLUSTER0: 1766.4 -> 1612.8 MHz"},
        {"request_image_engine_mode 1", "image engine: mode 0 -> mode 1"},
        {"enable_thermal_config LPM_FREQ 0", ":  -> "},
        {"enable_thermal_config LPM_FREQ 1", "thermal configuration LPM_FREQ: off -> on"},
        {"request_tmr_2cluster 0 0", "thermal mitigation: released -> requested"},
        {"request_tmr_2cluster 4294967295 4294967295", "thermal mitigation: requested -> released"},
        {"request_fbcn_en 0", "frame interval reports: on -> off"},
        {"request_fbcn_i_thresh 1 1", "frame intervals: wanted -> not wanted"},
        {"request_osprin_control 1", "osprin: off -> on"},
        {"set_osprin_gov_state 2", "osprin governor:  -> 2"},
        {"init_hw_fps_control", ":  -> "}};
    for (const auto &[call, change] : calls)
        EXPECT_EQ(told(make_call_record(0, call)), change) << call;
    EXPECT_EQ(told(make_service_record(0, "merlak service  10 no game")),
              "merlak service, 10 no:  -> 10 no game");
    EXPECT_EQ(told(make_property_record(0, "sys.zuv.vtmode 1")), "property sys.zuv.vtmode: 0 -> 1");
    EXPECT_EQ(told(make_log_record(0, "request_fps 30")), ":  -> ");
}

TEST(Terminal, FoldsLinesAtBlanks) {
    EXPECT_EQ(folded("one two  three\nfour five", 2, 9), "one two\n  three\nfour five");
    EXPECT_EQ(folded("one two three", 2, 0), "one two three");
    EXPECT_EQ(folded("   a longerthancolumns b", 3, 8), "   a\n   longerthancolumns\n   b");
    EXPECT_EQ(folded("µµµµ µµµ", 1, 8), "µµµµ µµµ");  // columns, not bytes
}

TEST(Messages, AreDescribedInTheWordsThatSendThem) {
    const std::pair<dvx_message, const char *> described[] = {
        {make_message("powerhal", 0, {1, 1, 45}),
         "game on --fps 45 --tuner 1  (powerhal 0 1 1 45)"},
        {make_message("powerhal", 0, {0, 2, 45}), "raw powerhal 0 0 2 45"},
        {make_message("powerhal", 9, {}), "rotate  (powerhal 9)"},
        {make_message("powerhal", 9, {1}), "raw powerhal 9 1"},
        {make_message("lowpowermode", 0, {1, 2, 1}), "lpm 2 --cap  (lowpowermode 0 1 2 1)"},
        {make_message("lowpowermode", 0, {}), "lpm off  (lowpowermode 0)"},
        {make_message("automode", 0, {3}), "automode resume  (automode 0 3)"},
        {make_text_message("powerhal", 15, "2:com.home"), "home 2 com.home  (powerhal 15)"},
        {make_message("a-client-of-more-than-19", 8, {}), "raw a-client-of-more-tha 8"}};
    for (const auto &[message, words] : described)
        EXPECT_EQ(describe_message(message), words);
    EXPECT_EQ(describe_message(make_text_message("powerhal", 4, std::string(300, 'w'))),
              "window " + std::string(255, 'w') + "  (powerhal 4)");
    EXPECT_EQ(describe_message(make_text_message("x", 4, "two")), "raw x 4 --text two");
}

scenario_file scenarios_of(const std::string &text) {
    std::istringstream input(text);
    return read_scenarios(input);
}

TEST(ScenarioFiles, NameTheLineThatIsWrong) {
    const std::pair<const char *, const char *> wrong[] = {
        {"# nothing\n", "no scenario in it"},
        {"game on\n", "line 1: a scenario begins with"},
        {"= a\ngame on\n", "line 1: 'a' expects nothing"},
        {"= a\ngmae on | nothing\n", "line 2: unknown word 'gmae'"},
        {"= a\ngame on --fps 500 | nothing\n", "line 2: --fps"},
        {"= a\nframes 3 fast | nothing\n", "line 2: 'fast'"},
        {"= a\ntouch | event\n", "line 2: which event?"},
        {"= a\ntouch | evnt interaction\n", "line 2: unknown record 'evnt'"},
        {"= a\ntouch |\n", "line 2: nothing is expected behind the bar"},
        {"= a\ntouch | log \"x\n", "line 2: a quote is not closed"},
        {"= a\ntouch | event intercation\n", "line 2: no event is named"},
        {"= a\ntouch | no hw requset_fps\n", "line 2: no library call is named"},
        {"= a\nanswer requset_fps 1\nstart | nothing\n", "line 2: no library call is named"},
        {"= a\nfailing thread nobody\nstart | nothing\n", "line 2: failing wants"},
        {"= a\ntouch\nwithout request_fps | nothing\n", "line 3: this stands before"},
        {"= a\nframes 999999999999 1 | nothing\n", "line 2: frames wants"},
        {"= a\n+99999999999999999999 | nothing\n", "line 2: '+9"},
        {"= a\n| event touch\n", "line 2: nothing is expected before this"}};
    for (const auto &[text, reason] : wrong)
        EXPECT_EQ(scenarios_of(text).error.find(reason), 0u) << scenarios_of(text).error;
    for (const char *mark : {"", "\xef\xbb\xbf"})
        EXPECT_EQ(
            scenarios_of(std::string(mark) + "= a\ntouch | event interaction\n | no hw\n").error,
            "");
}

// What one expectation says of an event, two calls and a line of the log.
TEST(Expectations, HoldOrDoNot) {
    std::vector<record> records = {make_event_record(0, 43), make_call_record(0, "request_fps 45"),
                                   make_log_record(0, "PM Complete!\n"),
                                   make_call_record(0, "request_fps 60")};
    records[2].priority = 4;
    const auto holds = [&](const char *text) {
        const scenario_file file = scenarios_of(std::string("= a\ntouch | ") + text + "\n");
        EXPECT_EQ(file.error, "") << text;
        return check_expectation(file.scenarios[0].steps[0].then, records).empty();
    };
    EXPECT_TRUE(holds("hw request_fps 60; event 43"));  // order counts within a kind alone
    EXPECT_TRUE(holds("only hw request_fps 45; hw request_fps 60; info \"PM Complete!\\n\""));
    for (const char *text :
         {"event mode_geo", "hw request_fps 60; hw request_fps 45", "hw request_fps",
          "only hw request_fps 60", "only hw request_fps 45", "info \"PM Complete!\"",
          "error PM Complete!", "no hw request_fps", "no event", "nothing"})
        EXPECT_FALSE(holds(text)) << text;
}

}  // namespace
