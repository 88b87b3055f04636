// The image-enhance controller: asks for an image-engine mode as app modes and video decoding
// change. Start-up builds its list; callbacks run on the threads that raise their events and only
// read it. Nothing is locked.
#pragma once

#include <cstdint>

struct ie_config {
    int32_t event;
    int32_t mode;
};

// The next entry of the built-in table: 0, or -1 when all have been read. It can be read once.
int get_ie_configuration(ie_config *entry);

// Builds the list and registers the callbacks. 0, or -ENOMEM with a log line and without a
// registration. Start-up, once the image-engine manager has started.
int init_image_enhance_controller(void);
