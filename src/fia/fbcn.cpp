#include "fia/fbcn.h"

#include <inttypes.h>

#include "core/log.h"
#include "resource/hw_library.h"

namespace {

constinit struct {
    int (*init_hw_fbcn_control)(void) = nullptr;  // must be there; nobody calls it
    int (*request_fbcn_en)(int on) = nullptr;
    int (*request_fbcn_i_thresh)(unsigned long long upper, unsigned long long lower) = nullptr;
} library;

}  // namespace

int request_fbcn_en(int on) {
    return library.request_fbcn_en != nullptr ? library.request_fbcn_en(on) : -EINVAL;
}

int request_fbcn_i_thresh(unsigned long long upper, unsigned long long lower) {
    return library.request_fbcn_i_thresh != nullptr ? library.request_fbcn_i_thresh(upper, lower)
                                                    : -EINVAL;
}

int fbcn_change_thresholds(uint64_t upper, uint64_t lower) {
    const int result = request_fbcn_i_thresh(upper, lower);
    log_debug(debug_features, "I thresh changed i_upper:%" PRIu64 " i_lower:%" PRIu64 "\n", upper,
              lower);
    return result;
}

int fbcn_bind(void) {
    if (hw_library_bind("init_hw_fbcn_control", &library.init_hw_fbcn_control) != 0 ||
        hw_library_bind("request_fbcn_en", &library.request_fbcn_en) != 0 ||
        hw_library_bind("request_fbcn_i_thresh", &library.request_fbcn_i_thresh) != 0)
        return -EINVAL;
    return 0;
}
