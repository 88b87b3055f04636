// The events of the daemon: what producers raise and features listen to. An event carries no
// payload; what belongs to it is read from the module that raised it.
#pragma once

#include <cstdint>

// Ids 28, 29, 65 to 69, 71 to 79 and 82 to 89 have slots but no meaning.
constexpr uint32_t event_count = 98;

// clang-format off
#define DVX_EVENTS(X) \
    X(0, EV_GAME_APP_RESUMED) \
    X(1, EV_GAME_APP_PAUSED) \
    X(2, EV_GEO_APP_RESUMED) \
    X(3, EV_GEO_APP_PAUSED) \
    X(4, EV_BROWSER_APP_RESUMED) \
    X(5, EV_BROWSER_APP_PAUSED) \
    X(6, EV_SNS_APP_RESUMED) \
    X(7, EV_SNS_APP_PAUSED) \
    X(8, EV_HOME_RESUMED) \
    X(9, EV_HOME_PAUSED) \
    X(10, EV_APP_CHANGE) \
    X(11, EV_ACTIVITY_CHANGED) \
    X(12, EV_WINDOW_CHANGED) \
    X(13, EV_INTERACTION) \
    X(14, EV_ROTATION) \
    X(15, EV_SOFT_KEY) \
    X(16, EV_VIDEO_DECODE_ON) \
    X(17, EV_VIDEO_DECODE_OFF) \
    X(18, EV_INCOMING_CALL_ON) \
    X(19, EV_INCOMING_CALL_OFF) \
    X(20, EV_ENCODE_START) \
    X(21, EV_ENCODE_END) \
    X(22, EV_VR_ON) \
    X(23, EV_VR_OFF) \
    X(24, EV_3RD_ENCODE_START) \
    X(25, EV_3RD_ENCODE_END) \
    X(26, EV_LIVE_WALLPAPER_ON) \
    X(27, EV_LIVE_WALLPAPER_OFF) \
    X(30, EV_GAME_TUNER_MODE_ON) \
    X(31, EV_GAME_TUNER_MODE_OFF) \
    X(32, EV_FPS_LOCK) \
    X(33, EV_FPS_UNLOCK) \
    X(34, EV_GAME_OPTIMIZER_ENABLE) \
    X(35, EV_GAME_OPTIMIZER_DISABLE) \
    X(36, EV_OFMODE_SET) \
    X(37, EV_OFMODE_RELEASE) \
    X(38, EV_DGPC_38) \
    X(39, EV_DGPC_39) \
    X(40, EV_FLOATING_WINDOW_ON) \
    X(41, EV_FLOATING_WINDOW_OFF) \
    X(42, EV_MODE_NONE) \
    X(43, EV_MODE_GAME_DEFAULT) \
    X(44, EV_MODE_GAME_TUNER) \
    X(45, EV_MODE_BROWSER) \
    X(46, EV_MODE_SNS) \
    X(47, EV_MODE_GEO) \
    X(48, EV_MODE_NONE_EXIT) \
    X(49, EV_MODE_GAME_DEFAULT_EXIT) \
    X(50, EV_MODE_GAME_TUNER_EXIT) \
    X(51, EV_MODE_BROWSER_EXIT) \
    X(52, EV_MODE_SNS_EXIT) \
    X(53, EV_MODE_GEO_EXIT) \
    X(54, EV_MODE_HOME) \
    X(55, EV_MODE_HOME_EXIT) \
    X(56, EV_MODE_HOME_LIVE_WALLPAPER) \
    X(57, EV_MODE_HOME_LIVE_WALLPAPER_EXIT) \
    X(58, EV_MODE_GALLERY) \
    X(59, EV_MODE_GALLERY_EXIT) \
    X(60, EV_STATE_IDLE) \
    X(61, EV_STATE_GAME_DEFAULT) \
    X(62, EV_STATE_GAME_TUNER) \
    X(63, EV_STATE_GRAPHIC_TUNE) \
    X(64, EV_STATE_FPS_TUNE) \
    X(70, EV_THERMAL_ENGINE_ACTIVATED) \
    X(80, EV_SCREEN_OFF) \
    X(81, EV_SCREEN_ON) \
    X(90, EV_AT_GEO_ON) \
    X(91, EV_AT_GEO_OFF) \
    X(92, EV_AT_BROWSER_ON) \
    X(93, EV_AT_BROWSER_OFF) \
    X(94, EV_AT_SNS_ON) \
    X(95, EV_AT_SNS_OFF) \
    X(96, EV_AT_GALLERY_ON) \
    X(97, EV_AT_GALLERY_OFF)
// clang-format on

enum event_id : uint32_t {
#define DVX_EVENT_ID(id, name) name = (id),
    DVX_EVENTS(DVX_EVENT_ID)
#undef DVX_EVENT_ID
};

// The name of an event for people's tools, or null for an id without one.
const char *event_name(uint32_t id);
