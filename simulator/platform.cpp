// The platform's interfaces, in memory: what is set is remembered, what comes out becomes a record.
#include <android/log.h>
#include <cutils/properties.h>
#include <cutils/sockets.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <utility>

#include "core/events.h"
#include "device/service_words.h"
#include "fia/lifecycle.h"
#include "platform/clock.h"
#include "platform/device_root.h"
#include "platform/host/turns.h"
#include "platform/socket.h"
#include "platform/thread.h"
#include "simulator/state.h"

namespace {

constexpr size_t message_size = 1024;  // a longer one is cut, as the platform's log does
constexpr char callback_line[] = "Callback for ";

std::string file_name(const char *path) {
    const char *slash = strrchr(path, '/');
    return slash != nullptr ? slash + 1 : path;
}

bool is_missing(const std::string &name) {
    return simulated.setup.missing.contains(name);
}

int fail(int error) {
    errno = error;
    return -1;
}

// What the analyser's thread does before it idles, at once: on a device it comes while start-up
// goes on.
void start_analyser() {
    const char *before = turns_thread();
    turns_set_thread("fia");
    if (fia_start_analyser() != 0)
        fia_stop_analyser();
    turns_set_thread(before);
}

}  // namespace

// ---- log

extern "C" int __android_log_print(int priority, const char *, const char *format, ...) {
    // How an event travels is not told: what its callbacks do is.
    if (strncmp(format, callback_line, sizeof(callback_line) - 1) == 0)
        return 0;
    const int saved_errno = errno;
    char message[message_size];
    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf(message, sizeof(message), format, arguments);
    va_end(arguments);
    record line = make_log_record(record_time_ns(), message);
    if (line.kind == record_kind::log)
        line.priority = priority;
    add_record(std::move(line));
    errno = saved_errno;
    return length;
}

// ---- properties

extern "C" int property_get(const char *key, char *value, const char *default_value) {
    if (const platform_answer *answer = take_answer(answer_kind::property); answer != nullptr)
        simulated.setup.properties[answer->name] = answer->value;
    const auto found = simulated.setup.properties.find(key);
    const bool set = found != simulated.setup.properties.end() && !found->second.empty();
    const char *text = set ? found->second.c_str() : default_value != nullptr ? default_value : "";
    const size_t length = strnlen(text, PROPERTY_VALUE_MAX - 1);
    memcpy(value, text, length);
    value[length] = '\0';
    return static_cast<int>(length);
}

extern "C" int property_set(const char *key, const char *value) {
    if (strlen(value) >= PROPERTY_VALUE_MAX)
        return -1;
    simulated.setup.properties[key] = value;
    add_record(make_property_record(record_time_ns(), std::string(key).append(" ").append(value)));
    return 0;
}

// ---- sockets

// Nobody connects: messages are dispatched without it.
extern "C" int socket_local_server(const char *, int, int type) {
    if (simulated.setup.name_taken)
        return fail(EADDRINUSE);
    const int fd = socket(AF_UNIX, type | SOCK_CLOEXEC, 0);
    sockaddr_un unnamed = {};
    unnamed.sun_family = AF_UNIX;
    // A socket without a name cannot listen.
    if (fd < 0 || simulated.setup.listen_fails)
        return fd;
    if (bind(fd, reinterpret_cast<const sockaddr *>(&unnamed), sizeof(unnamed.sun_family)) != 0) {
        close(fd);
        return -1;
    }
    return fd;
}

extern "C" int socket_local_client(const char *name, int, int) {
    if (const platform_answer *answer = take_answer(answer_kind::connect); answer != nullptr)
        return fail(static_cast<int>(answer->number));
    const auto state = simulated.setup.services.find(name);
    if (state != simulated.setup.services.end() && state->second != service_state::up)
        return fail(state->second == service_state::down ? ECONNREFUSED : EAGAIN);
    for (const device_service &service : device_services) {
        if (strcmp(service.socket, name) != 0)
            continue;
        simulated.connected = &service;
        return open("/dev/null", O_RDONLY | O_CLOEXEC);
    }
    return fail(ECONNREFUSED);
}

long socket_send(int, const void *message, size_t size) {
    const device_service &service = *simulated.connected;
    add_record(make_service_record(
        record_time_ns(),
        describe_service_message(service, static_cast<const char *>(message), size)));
    const platform_answer *answer = take_answer(answer_kind::sent);
    return answer != nullptr ? static_cast<long>(answer->number) : static_cast<long>(size);
}

// ---- clock and threads

int64_t clock_monotonic_ns(void) {
    if (const platform_answer *answer = take_answer(answer_kind::clock); answer != nullptr)
        simulated.now_ns = simulated.happening_ns + answer->number;
    return simulated.now_ns;
}

void clock_sleep_us(int64_t duration_us) {
    simulated.now_ns += duration_us * 1000;
}

// The simulator itself runs the steps of all threads but the one whose caller waits for it.
int thread_start(const char *name, void *(*body)(void *)) {
    if (simulated.setup.refused_threads.contains(name))
        return EAGAIN;
    simulated.threads.insert(name);
    if (strcmp(name, "policy") == 0)
        return turns_start(name, body);
    if (strcmp(name, "fia") == 0 && !simulated.replaying)
        start_analyser();
    return 0;
}

void thread_wait(pthread_cond_t *condition, pthread_mutex_t *lock) {
    turns_wait(condition, lock);
}

void thread_wake(pthread_cond_t *condition) {
    turns_wake(condition);
}

// ---- libraries

int device_path(char *buffer, size_t size, const char *path) {
    const int length =
        snprintf(buffer, size, "%s%s", path[0] == '/' ? simulated.setup.image.c_str() : "", path);
    return static_cast<size_t>(length) < size ? 0 : -ENAMETOOLONG;
}

void *device_library_open(const char *path, int flags) {
    char host_path[PATH_MAX];
    // What is missing is looked for where it would be on a device, which this host is not.
    if (take_answer(answer_kind::missing) != nullptr || is_missing(file_name(path)) ||
        device_path(host_path, sizeof(host_path), path) != 0)
        return dlopen(path, flags);
    return dlopen(host_path, flags);
}

void *device_library_symbol(void *library, const char *name) {
    const bool missing = take_answer(answer_kind::missing) != nullptr || is_missing(name);
    return dlsym(library, missing ? std::string("~").append(name).c_str() : name);
}

// ---- what the stand-in libraries ask for when they find themselves in a simulator

extern "C" void simulator_note_call(const char *call);
extern "C" int simulator_find_answer(const char *name, char *text, size_t size);

void simulator_note_call(const char *call) {
    record made = make_call_record(record_time_ns(), call);
    made.answer = 0;  // where nothing else is said
    add_record(std::move(made));
}

// A call has just been noted where this is the answer to it: its name, or that and its argument.
static void note_answer(const std::string &name, const char *text) {
    record *call = simulated.records.empty() ? nullptr : &simulated.records.back();
    if (call != nullptr && call->kind == record_kind::call &&
        (name == call->name || name.starts_with(call->name + ".")))
        call->answer = atoi(text);
}

int simulator_find_answer(const char *name, char *text, size_t size) {
    if (const platform_answer *answer = take_answer(answer_kind::library); answer != nullptr) {
        if (answer->number != 0)
            simulated.setup.answers[answer->name] = answer->value;
        else
            simulated.setup.answers.erase(answer->name);
    }
    const auto found = simulated.setup.answers.find(name);
    if (found == simulated.setup.answers.end())
        return -1;
    if (found->first.ends_with(".delay_ms")) {  // a slow call takes of the simulated time
        clock_sleep_us(atoll(found->second.c_str()) * 1000);
        return -1;
    }
    note_answer(found->first, found->second.c_str());
    return snprintf(text, size, "%s", found->second.c_str());
}
