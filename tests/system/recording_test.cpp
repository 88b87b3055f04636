// Recording a device's daemon, and what is told of the recording.
#include <unistd.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>

#include "tests/support/tool.h"
#include "tools/base/files.h"

namespace {

using nlohmann::json;

struct RecordedTool : Tool {
    std::string file;

    void SetUp() override {
        Tool::SetUp();
        setenv("DVXD_ROOT", device.root.c_str(), 1);
        file = device.root + "/../" + std::to_string(getpid()) + ".rec";
    }
    void TearDown() override {
        Tool::TearDown();
        unlink(file.c_str());
    }

    // A tuned game whose caps go down and that the screen turns over; recorded from its middle on.
    void record_game() {
        device_set_property(&device, "debug.dvxd_log.enable", "1");
        ASSERT_EQ(dvxctl("device start").status, 0);
        for (const char *words :
             {"optimizer on", "activity game/.Game", "window game", "game on --fps 45 --tuner 1"})
            ASSERT_EQ(dvxctl(words).status, 0) << words;
        outcome recorded;
        std::thread recorder([&] { recorded = dvxctl("record --out " + file + " --for 3s"); });
        std::ofstream frames(device.root + "/frames");
        for (int i = 0; i < 1600; ++i)
            frames << 16700 + i % 7 * 20 << "\n";
        frames.close();
        // Not so fast that the log tells of two reports in one breath.
        EXPECT_EQ(dvxctl("device frames " + device.root + "/frames --rate 60").status, 0);
        usleep(1200000);  // the tuner's rate comes
        EXPECT_EQ(dvxctl("rotate").status, 0);
        recorder.join();
        EXPECT_EQ(recorded.status, 0) << recorded.output;
        EXPECT_NE(recorded.output.find(" 5 messages, 1600 intervals"), std::string::npos)
            << recorded.output;
    }
};

TEST_F(RecordedTool, ReplaysAndExplainsWhatTheDaemonDid) {
    record_game();
    const json now = json::parse(dvxctl("status --json").output);
    EXPECT_EQ(now["up"], true);
    EXPECT_EQ(now["rate"]["fps"], 60);
    EXPECT_EQ(now["analyser"]["mode"], "active");
    EXPECT_EQ(now["analyser"]["scenes"], 1);

    const outcome replayed = dvxctl("replay --compare --json " + file);
    EXPECT_EQ(replayed.status, 0) << replayed.output;
    const json figures = json::parse(replayed.output);
    EXPECT_EQ(figures["different"], false);
    EXPECT_EQ(figures["intervals"], 1600);
    EXPECT_EQ(figures["measurements"], 1);
    EXPECT_EQ(figures["cap_changes"], 2);

    const std::string why = dvxctl("why " + file).output;
    for (const char *sentence :
         {"the measurement is complete: most of its intervals are of 60 frames per second",
          "caps down one step: 100 % of the last 301 intervals lay in the profile",
          "CLUSTER0 1766 -> 1613 MHz (levels 0 0 0 -> 0 1 0)",
          "45 frames per second asked: the game tuner wants 45",
          "60 frames per second asked: the game tuner wants 45, but the screen turned (until +"})
        EXPECT_NE(why.find(sentence), std::string::npos) << sentence << "\n" << why;
    // The daemon's log alone tells the same of what it says.
    EXPECT_NE(dvxctl("why " + device.root + "/dvxd.log").output.find("caps down one step, if one"),
              std::string::npos);

    const json changed =
        json::parse(dvxctl("replay --json --set hit_rate_percent=100 " + file).output);
    EXPECT_EQ(changed["without"]["measurements"], 1);
    EXPECT_EQ(changed["measurements"], 1);
    EXPECT_EQ(json::parse(dvxctl("replay --json --set period_divisor=3 " + file).output)
                  .at("cap_changes"),
              8);
}

TEST_F(RecordedTool, FindsWhereAReplayDiffers) {
    record_game();
    const std::string whole = read_file(file);
    const size_t at = whole.find("request_fps 45");
    ASSERT_NE(at, std::string::npos);
    std::ofstream(file) << std::string(whole).replace(at, 14, "request_fps 44");
    const outcome differs = dvxctl("replay --compare " + file);
    EXPECT_EQ(differs.status, 1);
    EXPECT_NE(differs.output.find("> hw  request_fps 44"), std::string::npos) << differs.output;
    EXPECT_NE(differs.output.find("> hw  request_fps 45"), std::string::npos) << differs.output;
    std::ofstream(file) << whole.substr(0, at);
    const outcome cut = dvxctl("replay --compare " + file);
    EXPECT_EQ(cut.status, 0) << cut.output;
    EXPECT_NE(cut.output.find("cut off in line"), std::string::npos);
}

TEST_F(RecordedTool, RefusesWhatIsOfNoUse) {
    std::ofstream(file) << "{\"dvx_recording\":7}\n";
    const std::string here = device.root + "/nothing";
    expect_refused(2, "replay " + file, file + ": line 1: the format's version is 7");
    expect_refused(2, "why " + here, here + ": No such file or directory");
    expect_refused(2, "why /etc/passwd", "neither a recording nor a log");
    expect_refused(2, "status --log " + device.root, "is a directory");
    expect_refused(2, "record --out " + here + "/x --log /etc/passwd", here + "/x: ");
    expect_refused(3, "record --out " + here, "no daemon runs on");
    expect_refused(3, "status", "no daemon runs on");
    expect_refused(2, "lab --game bik", "did you mean 'bike'?");
    expect_refused(2, "lab search --vary margin_percent=5..1", "is an empty range");
    expect_refused(2, "lab search --vary margin_percent=1..5 --shard 0/2", "--shard is K/N");
    std::ofstream(file) << "name,shape,cpu_fixed_ms,cpu_megacycles,gpu_fixed_ms,gpu_megacycles\n"
                        << "a,serial,1,1,1,-1\n";
    expect_refused(2, "lab --games " + file, "line 2: gpu_megacycles is from 0 to 10000, not '-1'");
}

// Closed loop: a game with room saves, one at a panel that is too fast does not, and a run's
// recording replays.
TEST_F(RecordedTool, LabClosesTheLoop) {
    const std::string words =
        "lab --json --minutes 3 --seeds 2 --governor eager --game bike --record " + device.root;
    const json saved = json::parse(dvxctl(words).output);
    EXPECT_GT(saved["energy_saved"], 0.15);
    EXPECT_GT(saved["cut"]["CLUSTER1"], 0.3);
    EXPECT_GT(saved["fps_capped"], 59);
    EXPECT_EQ(saved["caps_left"], false);
    EXPECT_EQ(json::parse(dvxctl(words).output), saved);  // by its seed
    EXPECT_EQ(dvxctl("replay --compare " + device.root + "/bike.rec").status, 0);
    const json fast = json::parse(dvxctl(words + " --panel 60.02").output);
    EXPECT_LT(fast["energy_saved"], 0.1);
    EXPECT_NE(dvxctl("why " + device.root + "/bike.rec").output.find("the panel runs within"),
              std::string::npos);

    // Two shards try what one search does, and the first set is the daemon's own.
    const std::string search =
        "lab search --minutes 1 --game bike --game hunter --samples 4 "
        "--vary margin_percent=0..40 --out " +
        device.root;
    EXPECT_EQ(dvxctl(search + "/whole").status, 0);
    EXPECT_EQ(dvxctl(search + "/one --shard 1/2").status, 0);
    EXPECT_EQ(dvxctl(search + "/two --shard 2/2").status, 0);
    EXPECT_EQ(json::parse(dvxctl("lab merge --json " + device.root + "/one " + device.root + "/two")
                              .output)["best"],
              json::parse(dvxctl("lab merge --json " + device.root + "/whole").output)["best"]);
    const std::string one = read_file(device.root + "/one");
    EXPECT_EQ(json::parse(one.substr(0, one.find('\n')))["set"]["margin_percent"], 15);
    ASSERT_EQ(dvxctl("lab table --set margin_percent=22 --out " + device.root + "/t.cpp").status,
              0);
    EXPECT_NE(read_file(device.root + "/t.cpp").find(".margin_percent = 22,"), std::string::npos);
}

}  // namespace
