#include "context/app_tables.h"

#include <cstdint>

#include "core/event_manager.h"

namespace {

void gallery_on() {
    notify_event(EV_AT_GALLERY_ON);
}

void gallery_off() {
    notify_event(EV_AT_GALLERY_OFF);
}

void video_player_on() {
    notify_event(EV_VIDEO_DECODE_ON);
}

void video_player_off() {
    notify_event(EV_VIDEO_DECODE_OFF);
}

void sns_on() {
    notify_event(EV_AT_SNS_ON);
}

void sns_off() {
    notify_event(EV_AT_SNS_OFF);
}

void navi_on() {
    notify_event(EV_AT_GEO_ON);
}

void navi_off() {
    notify_event(EV_AT_GEO_OFF);
}

void browser_on() {
    notify_event(EV_AT_BROWSER_ON);
}

void browser_off() {
    notify_event(EV_AT_BROWSER_OFF);
}

struct at_record {
    char package[package_name_size];
    trigger_action on;
    trigger_action off;
};

// clang-format off
constexpr at_record at_common_configuration[] = {
    {"com.locnall.KimGiSa", navi_on, navi_off},
    {"com.android.chrome", browser_on, browser_off},
    {"com.android.browser", browser_on, browser_off},
    {"mobi.mgeek.TunnyBrowser", browser_on, browser_off},
    {"org.mozilla.firefox", browser_on, browser_off},
    {"com.opera.browser", browser_on, browser_off},
    {"com.facebook.katana", sns_on, sns_off},
    {"com.instagram.android", sns_on, sns_off},
    {"com.kakao.story", sns_on, sns_off},
    {"com.twitter.android", sns_on, sns_off},
    {"com.nhn.android.band", sns_on, sns_off},
    {"com.skype.raider", sns_on, sns_off},
    {"com.kakao.talk", sns_on, sns_off},
    {"com.google.android.talk", sns_on, sns_off},
    {"com.tencent.mm", sns_on, sns_off},
    {"com.facebook.orca", sns_on, sns_off},
    {"jp.naver.line.android", sns_on, sns_off},
    {"com.google.android.gm", sns_on, sns_off},
    {"com.nhn.android.mail", sns_on, sns_off},
    {"net.daum.android.mail", sns_on, sns_off},
};

constexpr at_record at_configuration[] = {
    {"com.android.gallery3d", gallery_on, gallery_off},
    {"com.zuv.videoplayer", video_player_on, video_player_off},
    {"com.google.android.youtube", sns_on, sns_off},
    {"com.zuv.tdmb", video_player_on, video_player_off},
    {"com.kakao.taxi", navi_on, navi_off},
};
// clang-format on

// How far each table has been read. Start-up only.
constinit uint32_t common_cursor = 0;
constinit uint32_t app_cursor = 0;

template <size_t count>
int read_next(const at_record (&table)[count], uint32_t *cursor, at_entry *entry) {
    if (*cursor >= count)
        return -1;
    const at_record &record = table[(*cursor)++];
    *entry = {record.package, record.on, record.off};
    return 0;
}

}  // namespace

int get_at_configuration_for_common_app(at_entry *entry) {
    return read_next(at_common_configuration, &common_cursor, entry);
}

int get_at_configuration_for_app(at_entry *entry) {
    return read_next(at_configuration, &app_cursor, entry);
}
