// Client of the frame-rate service: commands of one word, and the name of the window in front. Any
// thread may call; a notification that cannot be sent is logged and lost.
#pragma once

#include <cstddef>
#include <cstdint>

struct gbm_message {
    int32_t type;
    char tag[20];
    union {
        char package[256];  // the larger first: it is the one that `= {}` clears
        uint32_t command;
    };
};
static_assert(sizeof(gbm_message) == 280);
static_assert(offsetof(gbm_message, tag) == 4);
static_assert(offsetof(gbm_message, command) == 24);
static_assert(offsetof(gbm_message, package) == 24);

inline constexpr char gbm_service[] = "gbm-client";

enum gbm_type : int32_t { gbm_type_command = 0, gbm_type_package = 1 };

// A command word is a group and an argument of 8 bits.
enum gbm_group : uint32_t {
    gbm_restoration = 0x100,
    gbm_package_status = 0x200,
    gbm_game_optimizer = 0x300,
    gbm_ofmode = 0x400,
    gbm_category = 0x1000,
    gbm_floating_window = 0x2000,
};

enum gbm_restoration_code : uint8_t {
    restoration_touch = 0,
    restoration_fps_lock = 1,
    restoration_fps_unlock = 2,
    restoration_rotation = 3,
};

enum gbm_category_code : uint8_t {
    category_code_none = 0,
    category_code_geo = 1,
    category_code_browser = 2,
    category_code_sns = 3,
    category_code_game = 5,
};

// Sends a message; what fails is logged under the service's own tag.
void send_msg_to_gbm(const gbm_message *message);

// Of `argument` the low 8 bits count. Always 0.
int request_gbm_restoration(uint32_t argument);
int send_pkg_status(uint32_t argument);
int gbm_category_set(uint32_t argument);
int notify_game_optimizer_en(uint32_t argument);
int notify_set_ofmode(uint32_t argument);
int notify_floating_window_info(uint32_t argument);

// A longer name is cut at 255 characters. Always 0.
int notify_package_name_to_gbm(const char *package);
