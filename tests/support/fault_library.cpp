// Lets one thing fail that the daemon asks of its system; DVX_FAULT says which: "listen", "thread
// N" for the N-th thread, or "alloc SIZE" for the first allocation of that many bytes. Put before
// the C library by LD_PRELOAD.
#include <dlfcn.h>
#include <errno.h>
#include <pthread.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <new>

namespace {

std::atomic<bool> allocation_failed = false;

// The number behind the fault's name, or 0 when another fault is wanted.
unsigned long fault_number(const char *name) {
    const char *fault = getenv("DVX_FAULT");
    const size_t length = strlen(name);
    return fault != nullptr && strncmp(fault, name, length) == 0
               ? strtoul(fault + length, nullptr, 10)
               : 0;
}

void *allocate(size_t size) {
    static const unsigned long wanted = fault_number("alloc ");
    if (size == wanted && gettid() == getpid() && !allocation_failed.exchange(true))
        return nullptr;
    return malloc(size);
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
    if (++calls == fault_number("thread "))
        return EAGAIN;
    return next(thread, attributes, body, argument);
}
