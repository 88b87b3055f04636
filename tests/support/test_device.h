// A virtual device of the test's own, for the time of the test.
#pragma once

#include <string>
#include <vector>

struct test_device {
    std::string root;
    int64_t calls_offset = 0;

    test_device();
    ~test_device();
};

// What reached the stand-in libraries since the last call, each as "NAME ARG...".
std::vector<std::string> device_calls(test_device *device);

// The same, only those calls whose text begins so.
std::vector<std::string> device_calls_of(test_device *device, const std::string &start);

// Lets a call answer `value` from now on; "NAME" or "NAME.ARGUMENT".
void device_answers(const test_device *device, const std::string &name, const std::string &value);

void device_set_property(const test_device *device, const std::string &name,
                         const std::string &value);

// Path of a built product, as "bin/dvxd".
std::string built(const std::string &path);

// Takes this process into a network namespace of its own. False where that is not allowed.
bool isolate_network(void);
