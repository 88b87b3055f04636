// Random days in the simulator: whatever can happen, missing libraries and entry points, failing
// services. Prints what followed, so that the answers of one daemon can be held against those of
// another that should behave alike.
#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include "device/virtual_device.h"
#include "tests/support/random_life.h"

namespace {

constexpr size_t day_bytes = 10000;

simulator_setup random_device(byte_source *today) {
    simulator_setup setup = simulator_fresh_device(device_image_path());
    while (today->pick(4) == 0)
        setup.missing.insert(device_calls_known[today->pick(device_calls_known.size())].name);
    if (today->pick(20) == 0)
        setup.missing.insert(today->any({"libhwresource.so", "libdvxcc.so", "libqcopt.so"}));
    if (today->pick(4) == 0)
        setup.properties["sys.zuv.compactmode.enabled"] = "true";
    if (today->pick(4) == 0)
        setup.properties["debug.dvxd_log.mode"] = std::to_string(today->next());
    setup.answers["get_custom_config.com.example.a"] = "TCONF_ENABLE ONE";
    return setup;
}

// The image lies elsewhere for each build.
std::string without_path(std::string text) {
    const std::string image = device_image_path();
    for (size_t at = text.find(image); at != std::string::npos; at = text.find(image))
        text.replace(at, image.size(), "");
    return text;
}

void print_records() {
    for (const record &came : simulator_take())
        printf("%lld %s %s %d %s\n", static_cast<long long>(came.time_ns / 1000),
               record_word(came.kind), came.thread_name.c_str(), came.priority,
               without_path(came.text).c_str());
}

void live(unsigned seed) {
    std::minstd_rand random(seed);
    const std::vector<uint8_t> bytes = random_bytes(&random, day_bytes);
    byte_source today = {bytes.data(), bytes.size()};
    printf("day %u\n", seed);
    const int started = simulator_start(random_device(&today));
    while (started == 0 && today.left > 0) {
        let_something_happen(&today);
        print_records();
    }
    print_records();
    fflush(stdout);
}

}  // namespace

int main(int argc, char **argv) {
    const int days = argc == 2 ? atoi(argv[1]) : 0;
    if (days < 1) {
        fprintf(stderr, "usage: days COUNT\n");
        return 2;
    }
    for (int seed = 1; seed <= days; ++seed) {
        fflush(stdout);
        const pid_t child = fork();
        if (child == 0) {
            live(static_cast<unsigned>(seed));
            _exit(0);
        }
        int status = 0;
        if (child < 0 || waitpid(child, &status, 0) != child || status != 0) {
            fprintf(stderr, "days: day %d did not end well\n", seed);
            return 1;
        }
    }
    return 0;
}
