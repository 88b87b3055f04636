// What recordings, logs and settings are read as, and what is said of those that are wrong.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "platform/host/json_text.h"
#include "tools/explain/explain_json.h"
#include "tools/explain/history.h"
#include "tools/explain/why.h"
#include "tools/recording/logcat.h"
#include "tools/simulated/settings.h"

namespace {

constexpr char header[] = "{\"dvx_recording\":1,\"order\":\"taken\",\"t\":5,\"wall_ns\":1000}\n";
constexpr char interval[] =
    "{\"t\":10,\"thread\":\"kevent_monitor\",\"in\":\"interval\",\"us\":16667}\n";

std::string temporary_file(const std::string &content) {
    const std::string path = testing::TempDir() + "dvx_recording_" + std::to_string(getpid());
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

// Everything that a recording has, in a line each, with what is wrong at its end.
std::string read_all(const std::string &content) {
    recording file = recording_open(temporary_file(content));
    recording_line line;
    std::string read;
    while (recording_next(&file, &line)) {
        read += std::to_string(line.time_ns) + " ";
        if (!line.is_happening)
            read += record_word(line.came.kind) + std::string(" ") + line.came.text;
        else if (line.taken.interval_us)
            read += std::to_string(*line.taken.interval_us);
        else
            read += line.taken.value + std::string(line.taken.message->client) + " " +
                    line.taken.message->payload.text;
        for (const platform_answer &answer : line.taken.answers)
            read += " " + std::to_string(answer.question) + answer.name + answer.value +
                    std::to_string(answer.number);
        line.taken.answers.clear();
        read += "\n";
    }
    for (const std::string &remark : file.remarks)
        read += remark;
    return read + file.error;
}

}  // namespace

TEST(Recording, IsReadLineByLine) {
    const std::string whole =
        std::string(header) + interval +
        "{\"us\": -3, \"in\": \"interval\", \"t\": 11}\n"
        "{\"t\":12,\"thread\":\"client_listener\",\"in\":\"message\",\"client\":\"powerhal\","
        "\"code\":5,\"text\":\"a\\uf7ffb\",\"given\":[[0,\"clock\",7],[2,\"prop\",\"n\",\"v\"],"
        "[3,\"answer\",\"x\",null],[4,\"connect\",\"s\",111]]}\n"
        "{\"t\":13,\"thread\":\"x\",\"log\":\"EV : 14\\n\",\"priority\":4}\n"
        "{\"t\":13,\"thread\":\"x\",\"service\":\"nobody\",\"bytes\":\"00ff\"}\n";
    EXPECT_EQ(read_all(whole),
              "10 16667\n11 -3\n"
              "12 powerhal a\xff"
              "b 07 2nv0 3x0 4s111\n"
              "13 event 14 EV_ROTATION\n13 service nobody  a message of 2 bytes\n");
}

TEST(Recording, SaysWhatIsWrongAndWhere) {
    const std::string begin = std::string(header) + interval;
    const std::pair<std::string, std::string> cases[] = {
        {"", "line 1: is no recording's first line"},
        {"hello\n", "line 1: is no recording's first line"},
        {"{\"dvx_recording\":2}\n", "line 1: the format's version is 2, this program reads 1"},
        {begin + "{\"t\":11,\"in\":\"nothing\"}\n", "10 16667\nline 3: is no line of a recording"},
        {begin + "[1]\n", "10 16667\nline 3: is no line of a recording"},
        {begin + "{\"t\":9,\"in\":\"interval\",\"us\":1}\n",
         "10 16667\nline 3: time runs backwards"},
        {begin + "{\"t\":11,\"in\":\"inter",
         "10 16667\nthe recording was cut off in line 3; it is good up to the one before"},
        {begin + std::string(2 << 20, 'x'),
         "10 16667\nline 3: is longer than a recording's lines are"},
    };
    for (const auto &[content, said] : cases)
        EXPECT_EQ(read_all(content), said);
    EXPECT_EQ(recording_open(testing::TempDir()).error, "is a directory");
}

TEST(Recording, KeepsEveryByteOfATextInJson) {
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    bytes += "\xef\x9e\x80 \xed\x95\x9c \xf0\x9f\x8e\xae \xed\xa0\x80 \xc0\x80";
    std::string json;
    append_json_text(&json, bytes.data(), bytes.size());
    const std::string line = "{\"t\":1,\"thread\":\"x\",\"hw\":" + json + "}";
    recording_line read;
    ASSERT_TRUE(recording_read_line(line, &read));
    EXPECT_EQ(read.came.text, bytes);
}

TEST(Recording, ReadsLogsAsLogcatWritesThem) {
    setenv("TZ", "UTC", 1);
    constexpr int64_t now_ns = 1795424146000000000;  // 2026-11-23 08:55:46 UTC
    for (const char *head : {"11-23 08:55:46.123", "2026-11-23 08:55:46.123999",
                             "11-23 08:55:46.123999000", "2026-11-23 09:55:46.123999 +0100"}) {
        logcat_line line;
        ASSERT_TRUE(
            logcat_read(std::string(head) + "  812  830 E Quorvel : CF45 b1\r", now_ns, &line))
            << head;
        EXPECT_EQ(line.time_ns, now_ns + 123999000) << head;
        EXPECT_EQ(line.text + line.tag + std::to_string(line.thread * 10 + line.priority),
                  "CF45 b1Quorvel8306");
        EXPECT_TRUE(logcat_is_daemon(line));
    }
    logcat_line line;
    EXPECT_FALSE(logcat_read("--------- beginning of main", now_ns, &line));
    EXPECT_FALSE(logcat_read("11-23 08:55:46.123  812  830 E Quorvel", now_ns, &line));
}

TEST(Settings, AreFoundByNameAndHeldToTheirRange) {
    simulated_figures figures;
    EXPECT_EQ(setting_apply_text(&figures, "margin_percent=40"), "");
    EXPECT_EQ(setting_apply_text(&figures, "GPU.1=500000000"), "");
    EXPECT_EQ(figures.tunables.margin_percent, 40);
    EXPECT_EQ(figures.rows[2].freqs[1], 500000000u);
    EXPECT_EQ(settings_check(figures), "");
    for (const char *wrong : {"margin=4", "margin_percent", "margin_percent=x",
                              "margin_percent=101", "GPU.3=1", "GPU.0=0", "period_divisor=0"})
        EXPECT_NE(setting_apply_text(&figures, wrong), "") << wrong;
    EXPECT_EQ(setting_apply_text(&figures, "GPU.1=800000000"), "");
    EXPECT_EQ(settings_check(figures), "GPU.1 is not below the level before it");
}

// From a log alone: what it tells has its cause, what it does not is said to be not known.
TEST(Why, ExplainsWhatALogTells) {
    const std::string log =
        "11-23 08:55:46.100  812  830 I Quorvel : H=90 MSI=5\n"
        "11-23 08:55:50.100  812  830 I Quorvel : 80% (241/301) H\n"
        "11-23 08:55:51.100  812  830 I Quorvel : J: 6, JT: 5\n"
        "11-23 08:55:52.100  812  830 I Quorvel : M Active: 1661, M Max: 1754, M Min: 1666\n"
        "11-23 08:55:52.100  812  830 I Quorvel : SC1! PM Start\n"
        "11-23 08:55:53.100  812  831 I Quorvel : CF30 b7\n";
    daemon_state state = daemon_state_make({});
    std::string said;
    const history_source source = history_of_file(
        temporary_file(log), [](const history_source &) {},
        [&](const step &taken) {
            for (const decision &made : why_take(&state, taken))
                said += decision_sentence(made) + "\n";
        });
    EXPECT_EQ(source.error, "");
    EXPECT_EQ(said,
              "caps down one step, if one can move: 80 % of the last 301 intervals lay in the "
              "profile, and 76 % let them go down\n"
              "caps up one step, if one can move: 6 of the last 30 intervals left the profile, 5 "
              "are allowed\n"
              "measuring again: the mean interval, 16.61 ms, is shorter than the fastest of the "
              "profile (16.66 ms): the panel runs within about 20 us of 60 frames per second, once "
              "rounded, or faster, and caps stay released\n"
              "30 frames per second asked: low power mode wants 30\n");
}

// A call that the library refused is told as refused, and has changed nothing; the next is taken.
TEST(Why, KnowsWhatTheHardwareRefused) {
    const auto message = [](int time_ns, const char *answer) {
        return "{\"t\":" + std::to_string(time_ns) +
               ",\"thread\":\"client_listener\",\"in\":\"message\",\"client\":\"powerhal\","
               "\"code\":0,\"values\":[0,1,60],\"given\":[[0,\"answer\",\"" +
               answer + "]]}\n";
    };
    const auto call = [](int time_ns, const char *text) {
        return "{\"t\":" + std::to_string(time_ns) + ",\"thread\":\"client_listener\",\"hw\":\"" +
               text + "\"}\n";
    };
    const std::string recorded =
        std::string(header) + message(10, "enable_thermal_config.TCONF_GAME\",\"-1\"") +
        call(11, "enable_thermal_config TCONF_GAME 1") + call(12, "request_fps 45") +
        message(20, "enable_thermal_config.TCONF_GAME\",null") +
        call(21, "enable_thermal_config TCONF_GAME 1");
    daemon_state state = daemon_state_make({});
    std::vector<std::string> told;
    std::vector<size_t> thermal;
    history_of_file(
        temporary_file(recorded), [](const history_source &) {},
        [&](const step &taken) {
            for (const decision &made : why_take(&state, taken))
                told.push_back(decision_line(made));
            thermal.push_back(state.thermal.size());
        });
    ASSERT_EQ(told.size(), 3u);
    EXPECT_EQ(state.rate, 45);
    EXPECT_EQ(thermal, (std::vector<size_t>{0, 1}));
    EXPECT_NE(told[0].find("\"reason\":\"rate_unknown\",\"numbers\":{\"fps\":45},"
                           "\"moved\":[{\"what\":\"display\",\"from\":null,\"to\":45,"
                           "\"unit\":\"fps\"}],\"answer\":0}"),
              std::string::npos)
        << told[0];
    EXPECT_NE(told[1].find("\"text\":\"refused, as the hardware library answers -1: thermal "
                           "configuration TCONF_GAME on\""),
              std::string::npos)
        << told[1];
    EXPECT_NE(told[1].find("\"answer\":-1"), std::string::npos) << told[1];
    EXPECT_NE(told[2].find("\"text\":\"thermal configuration TCONF_GAME on\""), std::string::npos)
        << told[2];
}
