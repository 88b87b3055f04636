#include "tests/support/recorder.h"

#include <mutex>
#include <utility>

#include "core/event_manager.h"

namespace {

std::mutex lock;
std::vector<int> raised;

template <uint32_t id>
void note() {
    const std::lock_guard<std::mutex> guard(lock);
    raised.push_back(static_cast<int>(id));
}

template <uint32_t... ids>
void register_notes(std::integer_sequence<uint32_t, ids...>) {
    (register_callback_for_event(ids, "recorder", note<ids>), ...);
}

}  // namespace

void record_events(void) {
    register_notes(std::make_integer_sequence<uint32_t, event_count>());
}

std::vector<int> take_raised(void) {
    const std::lock_guard<std::mutex> guard(lock);
    return std::exchange(raised, {});
}
