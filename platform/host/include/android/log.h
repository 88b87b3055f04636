/* The log of the platform, as far as the daemon uses it. */
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

enum android_LogPriority {
    ANDROID_LOG_UNKNOWN = 0,
    ANDROID_LOG_DEFAULT,
    ANDROID_LOG_VERBOSE,
    ANDROID_LOG_DEBUG,
    ANDROID_LOG_INFO,
    ANDROID_LOG_WARN,
    ANDROID_LOG_ERROR,
    ANDROID_LOG_FATAL,
    ANDROID_LOG_SILENT,
};

/* Writes one message; any thread may call. Returns the count of bytes written or a negative value.
 * errno survives the call. */
int __android_log_print(int priority, const char *tag, const char *format, ...)
    __attribute__((format(printf, 3, 4)));

#ifdef __cplusplus
}
#endif
