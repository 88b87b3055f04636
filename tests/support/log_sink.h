// The log as a test sees it: every message, kept.
#pragma once

#include <android/log.h>

#include <string>
#include <vector>

struct logged_message {
    int priority;
    std::string tag;
    std::string text;
};

std::vector<logged_message> logged_messages(void);
void clear_log(void);

// How often the message was logged at that priority, word for word.
int count_logged(int priority, const std::string &text);

inline int errors_logged(const std::string &text) {
    return count_logged(ANDROID_LOG_ERROR, text);
}
inline int infos_logged(const std::string &text) {
    return count_logged(ANDROID_LOG_INFO, text);
}

// How many messages begin like that.
int count_logged_like(const std::string &start);
