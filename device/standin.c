#define _GNU_SOURCE /* RTLD_DEFAULT */

#include "standin.h"

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

enum { line_size = 1024 };

/* What a simulator has that this library finds itself in, else null. Looked up while the library is
 * loaded, before anybody calls it. */
static struct {
    void (*note_call)(const char *call);
    int (*find_answer)(const char *name, char *text, unsigned long size);
} simulator;

/* Who wants to hear of calls and answers besides; null: nobody. Set before the library's first
 * call. */
static struct {
    void (*note_call)(const char *call);
    void (*note_answer)(const char *name, const char *text);
} observer;

void standin_observe(void (*note_call)(const char *call),
                     void (*note_answer)(const char *name, const char *text)) {
    observer.note_call = note_call;
    observer.note_answer = note_answer;
}

__attribute__((constructor)) static void find_simulator(void) {
    *(void **)&simulator.note_call = dlsym(RTLD_DEFAULT, "simulator_note_call");
    *(void **)&simulator.find_answer = dlsym(RTLD_DEFAULT, "simulator_find_answer");
}

static void device_file(char *path, size_t size, const char *name) {
    const char *root = getenv("DVXD_ROOT");
    snprintf(path, size, "%s/%s", root != NULL ? root : "", name);
}

/* One line of the device's file, with its time and thread. */
static void write_call(const char *call) {
    char path[PATH_MAX];
    char line[line_size];
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    int length =
        snprintf(line, sizeof(line), "%lld %ld %s\n",
                 (long long)now.tv_sec * 1000000000 + now.tv_nsec, (long)syscall(SYS_gettid), call);
    if (length > line_size - 1) {
        length = line_size - 1;
        line[length - 1] = '\n';
    }
    device_file(path, sizeof(path), "calls.log");
    const int fd = open(path, O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0644);
    if (fd < 0)
        return;
    /* A full disk, or a limit on the file's size, loses the record and not the device. */
    sigset_t too_large;
    sigset_t before;
    sigemptyset(&too_large);
    sigaddset(&too_large, SIGXFSZ);
    pthread_sigmask(SIG_BLOCK, &too_large, &before);
    if (write(fd, line, (size_t)length) < 0 && errno == EFBIG && !sigismember(&before, SIGXFSZ))
        sigtimedwait(&too_large, NULL, &(struct timespec){0, 0});
    pthread_sigmask(SIG_SETMASK, &before, NULL);
    close(fd);
}

void standin_record(const char *name, const char *format, ...) {
    char call[line_size];
    const int length = snprintf(call, sizeof(call), "%s", name);
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(call + length, sizeof(call) - (size_t)length, format, arguments);
    va_end(arguments);
    /* No text from outside may forge a line. */
    for (char *at = call; *at != '\0'; ++at)
        if ((unsigned char)*at < ' ')
            *at = '?';
    if (simulator.note_call != NULL)
        simulator.note_call(call);
    else
        write_call(call);
    if (observer.note_call != NULL)
        observer.note_call(call);
}

/* What the device's file has behind "KEY = ". */
static int find_in_file(const char *key, char *text, unsigned long size) {
    char path[PATH_MAX];
    char line[line_size];
    int result = -1;
    device_file(path, sizeof(path), "hardware.conf");
    FILE *file = fopen(path, "re");
    if (file == NULL)
        return -1;
    while (result < 0 && fgets(line, sizeof(line), file) != NULL) {
        char *value = strchr(line, '=');
        if (value == NULL)
            continue;
        *value++ = '\0';
        line[strcspn(line, " \t")] = '\0';
        if (strcmp(line, key) != 0)
            continue;
        value += strspn(value, " \t");
        value[strcspn(value, "\n")] = '\0';
        result = snprintf(text, size, "%s", value);
    }
    fclose(file);
    return result;
}

int standin_text(const char *name, const char *argument, char *text, unsigned long size) {
    char key[line_size];
    snprintf(key, sizeof(key), argument != NULL ? "%s.%s" : "%s", name, argument);
    if (simulator.find_answer != NULL)
        return simulator.find_answer(key, text, size);
    const int result = find_in_file(key, text, size);
    if (observer.note_answer != NULL)
        observer.note_answer(key, result >= 0 ? text : NULL);
    return result;
}

/* Lets the caller wait as a slow library would. */
static void delay(const char *name) {
    char text[line_size];
    if (standin_text(name, "delay_ms", text, sizeof(text)) < 0)
        return;
    const long ms = atol(text);
    const struct timespec pause = {ms / 1000, ms % 1000 * 1000000};
    nanosleep(&pause, NULL);
}

int standin_answer(const char *name, const char *argument) {
    char text[line_size];
    delay(name);
    if (argument != NULL && standin_text(name, argument, text, sizeof(text)) >= 0)
        return atoi(text);
    return standin_text(name, NULL, text, sizeof(text)) >= 0 ? atoi(text) : 0;
}
