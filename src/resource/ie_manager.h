// The image-engine manager: resolves what the image-engine requestors ask for into the one mode
// that the engine gets.
//
// Start-up builds the list. Requests come from event callbacks on whatever thread raises their
// event, grants from the policy thread. Nothing is locked; the mode is sent on every update, so the
// last one sent holds.
#pragma once

#include <cstdint>

// Binds the image engine and builds the requestor list. 0 or -EINVAL.
int start_ie_manager(void);

// The mode that the requestor asks for; 0: none. 0, or -EINVAL with a log line for an unknown
// requestor, whatever the library answers.
int requestor_request_ie(int32_t id, int32_t mode);

// The grant operation of the acceptor "off_image_enhancer". 0, or -EINVAL for an unknown requestor.
int ie_manager_set_grant(int32_t id, int32_t grant);
