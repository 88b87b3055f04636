#include "features/image_enhance_controller.h"

#include <errno.h>

#include <new>

#include "core/event_manager.h"
#include "core/log.h"
#include "resource/ie_manager.h"
#include "resource/requestor.h"

namespace {

constexpr ie_config ie_configuration[] = {
    {EV_MODE_NONE, 0},
    {EV_MODE_GAME_DEFAULT, 1},
    {EV_MODE_GAME_TUNER, 1},
    {EV_MODE_GALLERY, 3},
};
constexpr uint32_t ie_configurations = sizeof(ie_configuration) / sizeof(ie_configuration[0]);

struct ie_config_node {
    int32_t event;
    int32_t mode;
    ie_config_node *next;
};

constinit struct {
    uint32_t cursor = 0;
    ie_config_node *list = nullptr;
} controller;

void request_mode_of(event_id event) {
    for (const ie_config_node *node = controller.list; node != nullptr; node = node->next) {
        if (node->event != static_cast<int32_t>(event))
            continue;
        log_error("found %d, mode set to %d\n", node->event, node->mode);
        requestor_request_ie(requestor_image_enhance, node->mode);
        return;
    }
}

void cb_iec_no_specific_app() {
    request_mode_of(EV_MODE_NONE);
}

void cb_iec_game_default_app_resumed() {
    request_mode_of(EV_MODE_GAME_DEFAULT);
}

void cb_iec_game_tuner_app_resumed() {
    request_mode_of(EV_MODE_GAME_TUNER);
}

void cb_iec_browser_app_resumed() {
    request_mode_of(EV_MODE_BROWSER);
}

void cb_iec_sns_app_resumed() {
    request_mode_of(EV_MODE_SNS);
}

void cb_iec_geo_app_resumed() {
    request_mode_of(EV_MODE_GEO);
}

void cb_iec_gallery_app_resumed() {
    request_mode_of(EV_MODE_GALLERY);
}

void cb_iec_video_decode_on() {
    request_mode_of(EV_VIDEO_DECODE_ON);
}

void cb_iec_video_decode_off() {
    request_mode_of(EV_VIDEO_DECODE_OFF);
}

constexpr event_registration registrations[] = {
    {EV_MODE_NONE, cb_iec_no_specific_app},
    {EV_MODE_GAME_DEFAULT, cb_iec_game_default_app_resumed},
    {EV_MODE_GAME_TUNER, cb_iec_game_tuner_app_resumed},
    {EV_MODE_BROWSER, cb_iec_browser_app_resumed},
    {EV_MODE_SNS, cb_iec_sns_app_resumed},
    {EV_MODE_GEO, cb_iec_geo_app_resumed},
    {EV_MODE_GALLERY, cb_iec_gallery_app_resumed},
    {EV_VIDEO_DECODE_ON, cb_iec_video_decode_on},
    {EV_VIDEO_DECODE_OFF, cb_iec_video_decode_off},
};

bool build_list(ie_config *entry) {
    ie_config_node **link = &controller.list;
    while (get_ie_configuration(entry) == 0) {
        *link = new (std::nothrow) ie_config_node{entry->event, entry->mode, nullptr};
        if (*link == nullptr)
            return false;
        if (link == &controller.list)
            log_info("extend ie config init: event %d/%d", entry->event, entry->mode);
        else
            log_info("extend ie config next: event %d/%d", entry->event, entry->mode);
        link = &(*link)->next;
    }
    return true;
}

void free_list() {
    while (ie_config_node *node = controller.list) {
        controller.list = node->next;
        delete node;
    }
}

}  // namespace

int get_ie_configuration(ie_config *entry) {
    if (controller.cursor >= ie_configurations)
        return -1;
    *entry = ie_configuration[controller.cursor++];
    return 0;
}

int init_image_enhance_controller(void) {
    ie_config *entry = new (std::nothrow) ie_config;
    if (entry == nullptr) {
        log_error("Memory allocation failed for ie config.");
        return -ENOMEM;
    }
    const bool complete = build_list(entry);
    delete entry;
    if (!complete) {
        free_list();
        log_error("Memory allocation failed for ie_config_node.");
        return -ENOMEM;
    }
    register_callbacks("image_enhance_ctrl", registrations);
    return 0;
}
