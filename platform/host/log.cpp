#include <android/log.h>
#include <errno.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

namespace {

constexpr size_t message_size = 1024;  // a longer message is cut, as the platform's log does
constexpr size_t prefix_size = 96;

// Room for a message that consists of newlines alone and a prefix of ordinary length before each;
// only the part that is written is ever touched.
constexpr size_t output_size = message_size * 48;

char priority_letter(int priority) {
    constexpr char letters[] = {'?', '?', 'V', 'D', 'I', 'W', 'E', 'F', 'S'};
    return priority >= 0 && priority < static_cast<int>(sizeof(letters)) ? letters[priority] : '?';
}

size_t format_prefix(char *prefix, int priority, const char *tag) {
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    tm local;
    localtime_r(&now.tv_sec, &local);
    const size_t date = strftime(prefix, prefix_size, "%m-%d %H:%M:%S", &local);
    const int rest = snprintf(prefix + date, prefix_size - date,
                              ".%03d %5d %5d %c %-8.32s: ", static_cast<int>(now.tv_nsec / 1000000),
                              static_cast<int>(getpid()), static_cast<int>(syscall(SYS_gettid)),
                              priority_letter(priority), tag);
    return date + static_cast<size_t>(rest);
}

}  // namespace

extern "C" int __android_log_print(int priority, const char *tag, const char *format, ...) {
    const int saved_errno = errno;
    char message[message_size];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(message, sizeof(message), format, arguments);
    va_end(arguments);

    size_t length = strlen(message);
    while (length > 0 && message[length - 1] == '\n')
        message[--length] = '\0';

    char prefix[prefix_size];
    const size_t prefix_length = format_prefix(prefix, priority, tag);

    // Each line of the message gets the prefix, so that no text from outside can forge one.
    char output[output_size];
    size_t used = 0;
    const char *line = message;
    for (;;) {
        const char *end = strchrnul(line, '\n');
        const size_t line_length = static_cast<size_t>(end - line);
        if (used + prefix_length + line_length + 1 > sizeof(output))
            break;
        memcpy(output + used, prefix, prefix_length);
        memcpy(output + used + prefix_length, line, line_length);
        used += prefix_length + line_length;
        output[used++] = '\n';
        if (*end == '\0')
            break;
        line = end + 1;
    }
    const ssize_t written = write(STDERR_FILENO, output, used);
    errno = saved_errno;
    return static_cast<int>(written);
}
