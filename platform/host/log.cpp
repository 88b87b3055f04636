#include <android/log.h>
#include <errno.h>
#include <limits.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include "platform/host/held_write.h"
#include "platform/host/recording.h"

namespace {

constexpr size_t message_size = 1024;  // a longer message is cut, as the platform's log does
constexpr size_t prefix_size = 96;

// What goes out in one write, which no other thread's lines get into: whole lines.
struct output {
    char text[PIPE_BUF];
    size_t used;
    ssize_t written;  // so far, or negative
};
static_assert(message_size + prefix_size < PIPE_BUF, "a line fits into one write");

char priority_letter(int priority) {
    constexpr char letters[] = {'?', '?', 'V', 'D', 'I', 'W', 'E', 'F', 'S'};
    return priority >= 0 && priority < static_cast<int>(sizeof(letters)) ? letters[priority] : '?';
}

// DVXD_LOG=usec, as logcat's threadtime,usec.
bool wants_microseconds() {
    static const bool wanted = [] {
        const char *form = getenv("DVXD_LOG");
        return form != nullptr && strcmp(form, "usec") == 0;
    }();
    return wanted;
}

size_t format_prefix(char *prefix, int priority, const char *tag) {
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    tm local;
    localtime_r(&now.tv_sec, &local);
    const bool microseconds = wants_microseconds();
    const size_t date = strftime(prefix, prefix_size, "%m-%d %H:%M:%S", &local);
    const int rest = snprintf(
        prefix + date, prefix_size - date, ".%0*d %5d %5d %c %-8.32s: ", microseconds ? 6 : 3,
        static_cast<int>(now.tv_nsec / (microseconds ? 1000 : 1000000)), static_cast<int>(getpid()),
        static_cast<int>(syscall(SYS_gettid)), priority_letter(priority), tag);
    return date + static_cast<size_t>(rest);
}

// Writes what has been gathered. A reader that has gone costs the lines and not the process.
void flush(output *out) {
    const ssize_t count = write_held(STDERR_FILENO, out->text, out->used);
    out->written = count < 0 || out->written < 0 ? -1 : out->written + count;
    out->used = 0;
}

}  // namespace

extern "C" int __android_log_print(int priority, const char *tag, const char *format, ...) {
    const int saved_errno = errno;
    char message[message_size];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(message, sizeof(message), format, arguments);
    va_end(arguments);
    recording_note_log(priority, tag, message);

    size_t length = strlen(message);
    while (length > 0 && message[length - 1] == '\n')
        message[--length] = '\0';
    // A line's end for many a reader.
    for (char *at = strchr(message, '\r'); at != nullptr; at = strchr(at, '\r'))
        *at = '?';

    char prefix[prefix_size];
    const size_t prefix_length = format_prefix(prefix, priority, tag);

    // Each line of the message gets the prefix, so that no text from outside can forge one.
    output out;
    out.used = 0;
    out.written = 0;
    for (const char *line = message;;) {
        const char *end = strchrnul(line, '\n');
        const size_t line_length = static_cast<size_t>(end - line);
        if (out.used + prefix_length + line_length + 1 > sizeof(out.text))
            flush(&out);
        memcpy(out.text + out.used, prefix, prefix_length);
        memcpy(out.text + out.used + prefix_length, line, line_length);
        out.used += prefix_length + line_length;
        out.text[out.used++] = '\n';
        if (*end == '\0')
            break;
        line = end + 1;
    }
    flush(&out);
    errno = saved_errno;
    return static_cast<int>(out.written);
}
