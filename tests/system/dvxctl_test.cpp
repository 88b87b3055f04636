// dvxctl as a person uses it.
#include <signal.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/support/tool.h"
#include "tools/base/files.h"
#include "tools/device/delivery.h"
#include "tools/recording/messages.h"
#include "tools/recording/timeline.h"

namespace {

// Timers and the thermal engine on a device.
TEST_F(Tool, PlaysAScenarioInRealTime) {
    const outcome played = dvxctl("play /dev/stdin --time real", R"(= time is kept
game on     | event mode_game_default
automode on | hw request_fps 20
tmr 700     | hw request_tmr_2cluster 0 0
+700        | hw request_tmr_2cluster 4294967295 4294967295
touch       | hw request_fps 60
+8000       | hw request_fps 20
+3000       | event thermal_engine_activated
encode on   | only hw enable_thermal_config TCONF_CAMERA 1
)");
    EXPECT_EQ(played.output, "1 of 1 scenarios held\n");
}

TEST_F(Tool, DrivesADeviceFromItsLayoutToItsEnd) {
    EXPECT_EQ(dvxctl("device create").status, 0);
    EXPECT_EQ(dvxctl("device start").status, 0);
    EXPECT_EQ(dvxctl("device start").status, 1);
    EXPECT_EQ(dvxctl("device create").status, 1);  // not under a daemon's feet
    device.calls_offset = 0;
    EXPECT_EQ(dvxctl("fps 30").status, 0);
    EXPECT_EQ(device_calls_of(&device, "request_fps"), std::vector<std::string>{"request_fps 30"});
    EXPECT_EQ(dvxctl("raw dgpc 16 0").status, 0);
    EXPECT_EQ(device_calls_of(&device, "request_fps"), std::vector<std::string>{"request_fps 60"});
    EXPECT_EQ(dvxctl("raw powerhal 4 --text 'a window'").status, 0);
    EXPECT_EQ(dvxctl("home 2 com.example.home").status, 0);
    const std::string noted = read_file(device.root + device_messages_log);
    EXPECT_NE(noted.find(" window a window  (powerhal 4)\n"), std::string::npos);
    EXPECT_NE(noted.find(" home 2 com.example.home  (powerhal 15)\n"), std::string::npos);
    expect_refused(1, "raw nobody 0", "doesn't support nobody");
    expect_refused(1, "raw powerhal 99", "<99>");
    expect_refused(1, "automode 77", "Abnormal cmd");

    const outcome idle = dvxctl("device frames - --rate max", "16666\\n33333\\n");
    EXPECT_EQ(idle.status, 0);
    EXPECT_TRUE(idle.output.starts_with("2 intervals played: 0.05 s of frames")) << idle.output;
    EXPECT_NE(idle.output.find("looked at none of the frames: no game was in front"),
              std::string::npos)
        << idle.output;
    const std::string samples =
        "fps,frametime,elapsed\\n60,16.7,1000000000\\n60,16.7,2000000000\\n";
    EXPECT_EQ(dvxctl("device frames - --rate max", samples).status, 2);
    EXPECT_EQ(dvxctl("device frames - --rate max --sampled", samples).status, 0);
    EXPECT_EQ(dvxctl("device panel off").status, 0);
    EXPECT_EQ(dvxctl("device prop debug.x").output, "dvxctl: debug.x is not set\n");
    EXPECT_EQ(dvxctl("device prop debug.x 7").status, 0);
    EXPECT_EQ(dvxctl("device prop debug.x").output, "7\n");
    EXPECT_EQ(dvxctl("device prop ../x 7").status, 1);
    EXPECT_EQ(dvxctl("device stop").status, 0);

    // A directory that is no device's is left alone.
    const std::string other = device.root + "/precious";
    std::filesystem::create_directory(other);
    std::ofstream(other + "/letter") << "dear";
    EXPECT_EQ(dvxctl("device --root " + other + " create").status, 1);
    EXPECT_TRUE(std::filesystem::exists(other + "/letter"));
}

TEST_F(Tool, DoctorSaysWhatIsMissingAndWhatThatSwitchesOff) {
    setenv("DVXD_ROOT", device.root.c_str(), 1);
    ASSERT_EQ(dvxctl("device start").status, 0);
    const outcome healthy = dvxctl("doctor --panel 45");
    EXPECT_EQ(healthy.status, 0) << healthy.output;
    EXPECT_NE(healthy.output.find("45 frames per second, in the bucket of 45"), std::string::npos)
        << healthy.output;
    EXPECT_EQ(dvxctl("doctor --panel 90").status, 1);
    ASSERT_EQ(dvxctl("device stop").status, 0);

    const std::string vendor = device.root + "/vendor/lib64/";
    device_set_property(&device, "ro.vendor.extension_library", "");
    ASSERT_TRUE(device_hide_symbol(vendor + "libhwresource.so", "set_tmk_freq"));
    std::filesystem::create_directories(device.root + "/vendor/lib");
    std::filesystem::rename(vendor + "libdvxcc.so", device.root + "/vendor/lib/libdvxcc.so");
    std::filesystem::resize_file(device.root + "/vendor/lib/libdvxcc.so", 100);
    std::filesystem::remove(device.root + device_panel_node);
    std::filesystem::remove(device.root + device_interval_node);
    std::ofstream(device.root + device_interval_node) << "16666";
    const outcome ill = dvxctl("doctor");
    EXPECT_EQ(ill.status, 1);
    for (const char *said :
         {"libhwresource.so: lacks set_tmk_freq\n                  without it: no frequency cap",
          "ro.vendor.extension_library: the property is unset", "libdvxcc.so: is cut off",
          "sben_event: is not there", "fbcn_intv: is a plain file", "dvx-client: nobody listens",
          "gbm-client: nobody listens"})
        EXPECT_NE(ill.output.find(said), std::string::npos) << said << "\n" << ill.output;
    EXPECT_NE(dvxctl("doctor --json").output.find("\"verdict\":\"off\""), std::string::npos);
    expect_refused(2, "doctor --root " + device.root + "/nowhere", "is no directory");
}

TEST_F(Tool, ReachesTheDaemonThatIsMeantOrNobody) {
    test_device other;
    setenv("DVXD_ROOT", device.root.c_str(), 1);
    ASSERT_EQ(dvxctl("device start").status, 0);
    device_calls(&device);
    expect_refused(3, "--root " + other.root + " fps 30", "unshare --net");
    EXPECT_TRUE(device_calls_of(&device, "request_fps").empty());
    EXPECT_EQ(dvxctl("--root " + other.root + " day").status, 1);

    dvxctl("activity com.example.racer/.Race");
    dvxctl("window com.example.racer");
    dvxctl("game on");
    EXPECT_TRUE(
        dvxctl("device frames - --rate max", "16.6\\n16.7\\n").output.ends_with("janks: 0\n"));
    const int daemon = device_daemon_process(device.root);
    kill(daemon, SIGSTOP);
    EXPECT_EQ(dvxctl("touch").output, "dvxctl: the daemon does not answer\n");
    EXPECT_EQ(dvxctl("device frames - --rate max", "16666\\n").output,
              "dvxctl: dvxd " + std::to_string(daemon) +
                  " is stopped and takes no intervals; kill -CONT " + std::to_string(daemon) +
                  " lets it go on\n");
    kill(daemon, SIGCONT);
    std::ofstream(device.root + device_conf, std::ios::app) << "requst_fps = 1\nrequest_fps\n";
    EXPECT_EQ(dvxctl("device stop").status, 0);
    const std::string said = dvxctl("device start").output;
    EXPECT_NE(said.find("no library call is named 'requst_fps'"), std::string::npos) << said;
    EXPECT_NE(said.find("has no '='"), std::string::npos) << said;
}

// Each message before what it brought about, and all of that before the next message.
TEST_F(Tool, TimelineShowsCausesBeforeTheirEffects) {
    device_set_property(&device, "debug.dvxd_log.enable", "1");
    ASSERT_EQ(dvxctl("device start").status, 0);
    timeline line = timeline_open(device.root);
    constexpr int messages = 200;
    for (int i = 0; i < messages; ++i) {
        const int32_t fps = 20 + i % 2;
        for (const dvx_message &message : {make_message("dgpc", DVX_CODE_FPS, {fps}),
                                           make_message("powerhal", DVX_CODE_ROTATION, {})})
            ASSERT_EQ(deliver_message(message, device.root).reason, "");
    }
    usleep(2 * timeline_hold_back_ns / 1000);
    std::string seen;
    for (const record &came : timeline_read(&line))
        for (const auto &[text, letter] :
             {std::pair{"fps ", 'f'}, std::pair{"CF", 'c'}, std::pair{"request_fps", 'h'},
              std::pair{"rotate", 'r'}, std::pair{"14 EV_ROTATION", 'e'}})
            if (came.text.starts_with(text))
                seen += letter;
    std::string expected;
    for (int i = 0; i < messages; ++i)
        expected += "fchre";
    EXPECT_EQ(seen, expected);
}

TEST_F(Tool, WatchTellsOfTheDaemonAndTheDevice) {
    const std::string output = device.root + ".watch";
    std::thread watcher([&] { dvxctl("watch --brief > " + output); });
    const auto shows = [&](const std::string &text) {
        for (int i = 0; i < 2000; ++i, usleep(5000))
            if (read_file(output).find(text) != std::string::npos)
                return true;
        return false;
    };
    EXPECT_TRUE(shows("no daemon runs"));
    dvxctl("device start");
    EXPECT_TRUE(shows("runs\n"));
    dvxctl("fps 30");
    EXPECT_TRUE(shows("  message  fps 30  (dgpc 16 30)\n"));
    EXPECT_TRUE(shows("    hw       request_fps 30\n"));
    dvxctl("device stop");
    EXPECT_TRUE(shows("has ended\n"));
    dvxctl("device create");
    watcher.join();
    EXPECT_TRUE(shows("is gone\n"));
    std::filesystem::remove(output);
}

}  // namespace
