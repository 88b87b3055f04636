#include "bench/setup.h"

#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <new>

#include "core/event_manager.h"
#include "device/virtual_device.h"
#include "fia/clock_manager.h"
#include "fia/lifecycle.h"
#include "fia/records.h"
#include "resource/fps_manager.h"

namespace {

int64_t allocation_count = 0;

}  // namespace

void *operator new(size_t size, const std::nothrow_t &) noexcept {
    ++allocation_count;
    return malloc(size);
}
void *operator new[](size_t size, const std::nothrow_t &) noexcept {
    ++allocation_count;
    return malloc(size);
}

int64_t allocations(void) {
    return allocation_count;
}

const std::string &bench_device(void) {
    static const std::string root = [] {
        char name[] = "/tmp/dvx-bench-XXXXXX";
        const std::string made = mkdtemp(name);
        const std::string error = device_create(made, device_image_path());
        if (!error.empty()) {
            printf("%s\n", error.c_str());
            exit(1);
        }
        std::filesystem::remove(made + "/properties/debug.dvxd_log.enable");
        setenv("DVXD_ROOT", made.c_str(), 1);
        return made;
    }();
    return root;
}

void bench_set_up_daemon(void) {
    static const bool done = [] {
        bench_device();
        return init_event_manager() == 0 && start_fps_manager() == 0 &&
               init_fia_clock_manager() == 0 && init_fia() == 0;
    }();
    // The analyser publishes its records on its own thread.
    for (int i = 0; done && !fia_is_enabled() && i < 1000; ++i)
        usleep(1000);
}
