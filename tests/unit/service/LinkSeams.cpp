#include "tests/unit/service/LinkSeams.h"

#include <sys/types.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <new>
#include <thread>
#include <utility>

namespace seams {
namespace {

std::atomic<std::size_t> refusedBytes{SIZE_MAX};
thread_local std::function<void()> beforeRead;

void* allocate(std::size_t bytes, void* (*real)(std::size_t)) {
    dawdle(dawdleBeforeAllocation);
    if (bytes >= refusedBytes) {
        throw std::bad_alloc();
    }
    return real(bytes);
}

}  // namespace

thread_local std::chrono::nanoseconds dawdleBeforeWait{0};
thread_local std::chrono::nanoseconds dawdleBeforeAllocation{0};

void dawdle(std::chrono::nanoseconds duration) {
    if (duration == duration.zero()) {
        return;
    }
    const auto end = std::chrono::steady_clock::now() + duration;
    while (std::chrono::steady_clock::now() < end) {
        std::this_thread::yield();
    }
}

MemoryShortage::MemoryShortage(std::size_t fromBytes) {
    refusedBytes = fromBytes;
}

MemoryShortage::~MemoryShortage() {
    refusedBytes = SIZE_MAX;
}

BeforeRead::BeforeRead(std::function<void()> action) {
    beforeRead = std::move(action);
}

BeforeRead::~BeforeRead() {
    beforeRead = nullptr;
}

}  // namespace seams

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): names that the linker
// makes: __wrap_ is called instead of, __real_ is the function itself
extern "C" {

void __real__ZNSt18condition_variable4waitERSt11unique_lockISt5mutexE(
    std::condition_variable* condition, std::unique_lock<std::mutex>* lock);

void __wrap__ZNSt18condition_variable4waitERSt11unique_lockISt5mutexE(
    std::condition_variable* condition, std::unique_lock<std::mutex>* lock) {
    seams::dawdle(seams::dawdleBeforeWait);
    __real__ZNSt18condition_variable4waitERSt11unique_lockISt5mutexE(condition, lock);
}

ssize_t __real_read(int descriptor, void* buffer, std::size_t size);

ssize_t __wrap_read(int descriptor, void* buffer, std::size_t size) {
    if (seams::beforeRead) {
        seams::beforeRead();
    }
    return __real_read(descriptor, buffer, size);
}

// What std::size_t is called within the names of the two operators differs by platform.
void* realNew(std::size_t bytes) asm("__real__Znw" SIZE_LETTER);
void* wrappedNew(std::size_t bytes) asm("__wrap__Znw" SIZE_LETTER);

void* wrappedNew(std::size_t bytes) {
    return seams::allocate(bytes, realNew);
}

void* realArrayNew(std::size_t bytes) asm("__real__Zna" SIZE_LETTER);
void* wrappedArrayNew(std::size_t bytes) asm("__wrap__Zna" SIZE_LETTER);

void* wrappedArrayNew(std::size_t bytes) {
    return seams::allocate(bytes, realArrayNew);
}
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
