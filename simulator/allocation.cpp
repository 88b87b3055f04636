#include "simulator/allocation.h"

#include <stdlib.h>

#include <atomic>
#include <new>

namespace {

std::atomic<int> left = -1;
std::atomic<bool> failed = false;

void *allocate(size_t size) {
    if (left.load() >= 0 && left.fetch_sub(1) == 0) {
        failed = true;
        return nullptr;
    }
    return malloc(size);
}

}  // namespace

void fail_allocation_after(int count) {
    failed = false;
    left = count;
}

bool allocation_has_failed(void) {
    return failed;
}

void *operator new(size_t size, const std::nothrow_t &) noexcept {
    return allocate(size);
}
void *operator new[](size_t size, const std::nothrow_t &) noexcept {
    return allocate(size);
}
void *operator new(size_t size) {
    return malloc(size);
}
void *operator new[](size_t size) {
    return malloc(size);
}
void operator delete(void *memory) noexcept {
    free(memory);
}
void operator delete[](void *memory) noexcept {
    free(memory);
}
void operator delete(void *memory, size_t) noexcept {
    free(memory);
}
void operator delete[](void *memory, size_t) noexcept {
    free(memory);
}
