// Lets one thing fail that the daemon asks of its system; DVX_FAULT says which: "listen", "thread
// N" for the N-th thread, "alloc SIZE" for the main thread's first allocation of that many bytes,
// or "nth N" for the N-th allocation of all. Put before the C library by LD_PRELOAD. A file
// "fault.log" of the device says that it came to pass.
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <new>

namespace {

// The number behind the fault's name, or 0 when another fault is wanted.
unsigned long fault_number(const char *name) {
    const char *fault = getenv("DVX_FAULT");
    const size_t length = strlen(name);
    return fault != nullptr && strncmp(fault, name, length) == 0
               ? strtoul(fault + length, nullptr, 10)
               : 0;
}

void note_fault() {
    char path[PATH_MAX];
    snprintf(path, sizeof(path), "%s/fault.log", getenv("DVXD_ROOT"));
    close(open(path, O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
}

bool is_wanted(size_t size) {
    static const unsigned long wanted_size = fault_number("alloc ");
    static const unsigned long wanted_call = fault_number("nth ");
    static std::atomic<unsigned long> calls = 0;
    static std::atomic<bool> failed = false;
    if (++calls == wanted_call)
        return true;
    return size == wanted_size && gettid() == getpid() && !failed.exchange(true);
}

void *allocate(size_t size) {
    if (!is_wanted(size))
        return malloc(size);
    note_fault();
    return nullptr;
}

}  // namespace

void *operator new(size_t size, const std::nothrow_t &) noexcept {
    return allocate(size);
}
void *operator new[](size_t size, const std::nothrow_t &) noexcept {
    return allocate(size);
}

extern "C" int listen(int fd, int backlog) {
    static int calls = 0;
    static const auto next = reinterpret_cast<int (*)(int, int)>(dlsym(RTLD_NEXT, "listen"));
    const char *fault = getenv("DVX_FAULT");
    // The first call is the platform's, which opens the socket.
    if (fault != nullptr && strcmp(fault, "listen") == 0 && ++calls > 1) {
        note_fault();
        errno = EADDRINUSE;
        return -1;
    }
    return next(fd, backlog);
}

extern "C" int pthread_create(pthread_t *thread, const pthread_attr_t *attributes,
                              void *(*body)(void *), void *argument) {
    using operation = int (*)(pthread_t *, const pthread_attr_t *, void *(*)(void *), void *);
    static std::atomic<unsigned long> calls = 0;
    static const auto next = reinterpret_cast<operation>(dlsym(RTLD_NEXT, "pthread_create"));
    if (++calls == fault_number("thread ")) {
        note_fault();
        return EAGAIN;
    }
    return next(thread, attributes, body, argument);
}
