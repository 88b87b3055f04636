#include "tools/day_steps.h"

#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "device/virtual_device.h"
#include "tools/frames.h"
#include "tools/messages.h"

namespace {

constexpr double play_speed = 12;  // times real time, so that a measurement takes a moment

void tell(day *today, const dvx_message &message, bool is_text) {
    const int result = send_message(message, is_text, today->line.root);
    if (result != 0)
        printf("    the daemon does not answer: %s\n", strerror(-result));
}

void tell_values(day *today, const char *client, int32_t code, const std::vector<int32_t> &values) {
    tell(today, make_message(client, code, values), false);
}

void tell_text(day *today, int32_t code, const char *text) {
    tell(today, make_text_message("powerhal", code, text), true);
}

void show_app(day *today, const char *package, const char *activity) {
    tell_text(today, DVX_CODE_ACTIVITY, activity);
    tell_text(today, DVX_CODE_WINDOW, package);
}

// A game of the mobile kind: 60 frames per second with a little unrest.
std::vector<int64_t> steady_frames(size_t count) {
    std::vector<int64_t> frames(count);
    for (size_t i = 0; i < count; ++i)
        frames[i] = 16700 + static_cast<int64_t>(i * 37 % 11 * 20);
    return frames;
}

// A passage in which every fourth frame comes two display periods late.
std::vector<int64_t> heavy_frames(size_t count) {
    std::vector<int64_t> frames = steady_frames(count);
    for (size_t i = 0; i < count; i += 4)
        frames[i] = 50000;
    return frames;
}

void home(day *today) {
    tell_text(today, DVX_CODE_HOME, "1:com.example.home");
    show_app(today, "com.example.home", "com.example.home/.Launcher");
}

void browser(day *today) {
    tell_text(today, DVX_CODE_HOME, "0:com.example.home");
    show_app(today, "com.example.browser", "com.example.browser/.Main");
    tell_values(today, "powerhal", DVX_CODE_BROWSER, {1});
}

void game(day *today) {
    tell_values(today, "powerhal", DVX_CODE_BROWSER, {0});
    show_app(today, "com.example.racer", "com.example.racer/.Race");
    tell_values(today, "powerhal", DVX_CODE_GAME, {0, 1, 60, 0});
}

void measure(day *today) {
    play_frames(today->line.root, steady_frames(903), play_speed);
}

// Five reports of 301 intervals.
void lower(day *today) {
    play_frames(today->line.root, steady_frames(1505), play_speed);
}

void struggle(day *today) {
    play_frames(today->line.root, heavy_frames(90), 3);
}

void tuned_game(day *today) {
    tell_values(today, "powerhal", DVX_CODE_GAME_OPTIMIZER, {1});
    tell_values(today, "powerhal", DVX_CODE_GAME, {1, 1, 45, 0});
}

void rotate(day *today) {
    tell_values(today, "powerhal", DVX_CODE_ROTATION, {});
}

void call_on(day *today) {
    tell_values(today, "powerhal", DVX_CODE_INCOMING_CALL, {1});
}

void call_off(day *today) {
    tell_values(today, "powerhal", DVX_CODE_INCOMING_CALL, {0});
}

void screen_off(day *today) {
    device_report_panel(today->line.root, false);
}

void screen_on(day *today) {
    device_report_panel(today->line.root, true);
}

void leave_game(day *today) {
    tell_values(today, "powerhal", DVX_CODE_GAME, {1, 0, 45, 0});
    tell_values(today, "powerhal", DVX_CODE_GAME_OPTIMIZER, {0});
    home(today);
}

void leave_home_for(day *today, const char *package, const char *activity) {
    tell_text(today, DVX_CODE_HOME, "0:com.example.home");
    show_app(today, package, activity);
}

void video(day *today) {
    leave_home_for(today, "com.zuv.videoplayer", "com.zuv.videoplayer/.Play");
    tell_values(today, "mediahal", DVX_CODE_VIDEO_DECODE, {1});
    tell_values(today, "mediahal", DVX_CODE_VIDEO_DECODE, {0});
}

void camera(day *today) {
    show_app(today, "com.example.camera", "com.example.camera/.Record");
    tell_values(today, "powerhal", DVX_CODE_ENCODE, {1});
    usleep(500000);
    tell_values(today, "powerhal", DVX_CODE_ENCODE, {0});
}

void map(day *today) {
    show_app(today, "com.locnall.KimGiSa", "com.locnall.KimGiSa/.Map");
}

void chat(day *today) {
    show_app(today, "com.kakao.talk", "com.kakao.talk/.Chat");
}

void gallery(day *today) {
    show_app(today, "com.android.gallery3d", "com.android.gallery3d/.Album");
}

void automode_game(day *today) {
    show_app(today, "com.example.puzzle", "com.example.puzzle/.Play");
    tell_values(today, "powerhal", DVX_CODE_GAME, {0, 1, 60, 0});
    tell_values(today, "automode", DVX_CODE_ANY, {1});
}

void touch(day *today) {
    tell_values(today, "powerhal", DVX_CODE_INTERACTION, {});
}

void automode_off(day *today) {
    tell_values(today, "automode", DVX_CODE_ANY, {0});
}

void vr(day *today) {
    tell_values(today, "vrhal", DVX_CODE_VR, {1});
    usleep(500000);
    tell_values(today, "vrhal", DVX_CODE_VR, {0});
    tell_values(today, "powerhal", DVX_CODE_GAME, {0, 0, 60, 0});
}

void low_power(day *today) {
    tell_values(today, "lowpowermode", DVX_CODE_ANY, {1, 2, 1});
    usleep(500000);
    tell_values(today, "lowpowermode", DVX_CODE_ANY, {0, 0, 0});
}

void mitigation(day *today) {
    tell_values(today, "tmr", DVX_CODE_TIMED_MITIGATION, {1200});
}

}  // namespace

const std::vector<day_step> day_steps = {
    {"The home screen is shown; nothing is asked of the hardware.", home, 700, {}},
    {"A browser: the policy enters fps_tune; the display keeps its 60 frames per second.",
     browser,
     700,
     {}},
    {"A game comes to the front: every cap is released and a pilot measurement begins.",
     game,
     900,
     {"set_tmk_freq TMK_CLUSTER1 2803200", "set_tmk_freq TMK_CLUSTER0 1766400",
      "set_tmk_freq TMK_GPU 710000000", "request_fbcn_i_thresh 0 0"}},
    {"It plays 60 frames per second; after 901 intervals its profile is complete.",
     measure,
     300,
     {}},
    {"It holds its frame rate, so every 301 intervals one cap goes down.",
     lower,
     300,
     {"set_tmk_freq TMK_CLUSTER0 1612800", "set_tmk_freq TMK_GPU 596000000",
      "set_tmk_freq TMK_CLUSTER1 1612800", "set_tmk_freq TMK_CLUSTER0 1420800",
      "set_tmk_freq TMK_GPU 414000000"}},
    {"A heavy passage: frames come late, and caps go up again.",
     struggle,
     300,
     {"set_tmk_freq TMK_GPU 596000000"}},
    {"The game tuner takes the same game over, at 45 frames per second, after one second.",
     tuned_game,
     1500,
     {"request_fps 45"}},
    {"The screen turns: 60 frames per second for two seconds, then 45 again.",
     rotate,
     2400,
     {"request_fps 60", "request_fps 45"}},
    {"A call comes in and covers the game: its frame rate and its caps are given back.",
     call_on,
     900,
     {"request_fps 60"}},
    {"The call is over: the game is in front again.", call_off, 900, {"request_fps 45"}},
    {"The screen goes off: no frame needs analysing.",
     screen_off,
     900,
     {"request_fbcn_en 0", "request_fps 60"}},
    {"The screen goes on.", screen_on, 900, {"request_fbcn_en 1", "request_fps 45"}},
    {"Home: the game is left, every cap is released and the display is back at 60.",
     leave_game,
     900,
     {"request_fbcn_i_thresh 18446744073709551615 0", "set_tmk_freq TMK_CLUSTER1 2803200",
      "set_tmk_freq TMK_CLUSTER0 1766400", "set_tmk_freq TMK_GPU 710000000", "request_fps 60"}},
    {"A video player: the activity trigger knows it; the image engine stays as it is.",
     video,
     700,
     {}},
    {"The camera records: its thermal configuration holds as long.",
     camera,
     700,
     {"enable_thermal_config TCONF_CAMERA 1", "enable_thermal_config TCONF_CAMERA 0"}},
    {"A map, known by its window: geo mode, published as 2.",
     map,
     700,
     {"enable_thermal_config TCONF_GEO 1"}},
    {"A chat: social mode.", chat, 700, {"enable_thermal_config TCONF_GEO 0"}},
    {"The gallery gets its image-engine mode.", gallery, 700, {"request_image_engine_mode 3"}},
    {"A game under automode: 20 frames per second, less brightness, its frequencies.",
     automode_game,
     900,
     {"enable_thermal_config SWAM_FREQ 1", "request_fps 20", "merlak service  10 game",
      "power-control HAL  max brightness 160:72"}},
    {"A touch lifts frame rate and brightness until eight seconds after it.",
     touch,
     900,
     {"request_fps 60", "request_fps 20", "power-control HAL  max brightness 160:-1",
      "power-control HAL  max brightness 160:72"}},
    {"Automode off.", automode_off, 500, {"request_fps 60", "enable_thermal_config SWAM_FREQ 0"}},
    {"VR: frames are not analysed meanwhile. Then the game is left.",
     vr,
     500,
     {"request_fbcn_i_thresh 18446744073709551615 0", "request_fbcn_i_thresh 0 0",
      "request_osprin_control 0"}},
    {"Extreme low power mode with its cap of 30 frames per second, and off again.",
     low_power,
     500,
     {"enable_thermal_config LPM_FREQ 0", "request_fps 30", "request_fps 60"}},
    {"A service asks for thermal mitigation for 1.2 seconds.",
     mitigation,
     1500,
     {"request_tmr_2cluster 0 0", "request_tmr_2cluster 4294967295 4294967295"}},
};
