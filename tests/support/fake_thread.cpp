#include "tests/support/fake_thread.h"

#include <errno.h>

#include "platform/thread.h"

namespace {

bool refused = false;

}  // namespace

std::vector<std::string> &requested_threads(void) {
    static std::vector<std::string> names;
    return names;
}

void refuse_threads(bool refuse) {
    refused = refuse;
}

int thread_start(const char *name, void *(*)(void *)) {
    requested_threads().push_back(name);
    return refused ? EAGAIN : 0;
}
