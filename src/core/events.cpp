#include "core/events.h"

namespace {

struct event_names {
    const char *name[event_count];
};

constexpr event_names make_event_names() {
    event_names names = {};
#define DVX_EVENT_NAME(id, name_of) names.name[id] = #name_of;
    DVX_EVENTS(DVX_EVENT_NAME)
#undef DVX_EVENT_NAME
    return names;
}

constexpr event_names names = make_event_names();

}  // namespace

const char *event_name(uint32_t id) {
    return id < event_count ? names.name[id] : nullptr;
}
