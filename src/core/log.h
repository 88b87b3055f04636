// Log lines of the daemon. `log_debug` tests its group's gate before any argument is evaluated.
#pragma once

#include <android/log.h>

#include "core/debug_gate.h"

#define LOG_TAG "Quorvel"

#define log_error(...) __android_log_print(ANDROID_LOG_ERROR, LOG_TAG, __VA_ARGS__)
#define log_info(...) __android_log_print(ANDROID_LOG_INFO, LOG_TAG, __VA_ARGS__)
#define log_debug(group, ...)        \
    do {                             \
        if (rtDebugMode(group) != 0) \
            log_info(__VA_ARGS__);   \
    } while (false)
#define log_static(group, ...)       \
    do {                             \
        if (stDebugMode(group) != 0) \
            log_info(__VA_ARGS__);   \
    } while (false)
