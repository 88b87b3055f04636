#include "tests/support/log_sink.h"

#include <stdarg.h>
#include <stdio.h>

#include <algorithm>
#include <mutex>

namespace {

std::mutex lock;
std::vector<logged_message> messages;

}  // namespace

extern "C" int __android_log_print(int priority, const char *tag, const char *format, ...) {
    char text[1024];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(text, sizeof(text), format, arguments);
    va_end(arguments);
    const std::lock_guard<std::mutex> guard(lock);
    messages.push_back({priority, tag, text});
    return 1;
}

std::vector<logged_message> logged_messages(void) {
    const std::lock_guard<std::mutex> guard(lock);
    return messages;
}

void clear_log(void) {
    const std::lock_guard<std::mutex> guard(lock);
    messages.clear();
}

int count_logged(int priority, const std::string &text) {
    const auto all = logged_messages();
    return static_cast<int>(std::count_if(all.begin(), all.end(), [&](const logged_message &m) {
        return m.priority == priority && m.text == text;
    }));
}

int count_logged_like(const std::string &start) {
    const auto all = logged_messages();
    return static_cast<int>(std::count_if(all.begin(), all.end(), [&](const logged_message &m) {
        return m.text.starts_with(start);
    }));
}
