// Preloaded into the service: makes one allocation fail, numbers the threads, and hands every system call
// that can fail to the sweep, which lets it through or answers in the kernel's place.
#include <dlfcn.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "tests/sweep/Calls.h"
#include "tests/sweep/SharedPage.h"

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

using ThreadBody = void* (*)(void*);

struct NewThread {
    ThreadBody body;
    void* argument;
};

SharedPage* page = nullptr;
// Static storage: the memory that a new thread is told by must not be an allocation of the service's.
std::array<NewThread, SharedPage::MOST_THREADS> newThreads;
__attribute__((tls_model("initial-exec"))) thread_local int threadNumber = 0;

void endWith(const char* problem) {
    static_cast<void>(!write(STDERR_FILENO, problem, std::strlen(problem)));
    _exit(EXIT_FAILURE);
}

bool mayAllocate() {
    if (page == nullptr || !page->isCounting) {
        return true;
    }
    const auto thread = static_cast<std::size_t>(threadNumber);
    const long number = ++page->allocations.at(thread);
    if (threadNumber != page->failingThread || number != page->failingAllocation) {
        return true;
    }
    page->isMet = true;
    errno = ENOMEM;
    return false;
}

void* runNumbered(void* numbered) {
    auto& thread = *static_cast<NewThread*>(numbered);
    threadNumber = static_cast<int>(&thread - newThreads.data());
    page->threadIds.at(static_cast<std::size_t>(threadNumber)) = gettid();
    return thread.body(thread.argument);
}

int numberOfNextThread() {
    return std::min(page->threads++, SharedPage::MOST_THREADS - 1);
}

int descriptorNamedBy(const char* variable) {
    const char* value = std::getenv(variable);
    return value == nullptr ? -1 : std::atoi(value);
}

/// Every call but the harmless ones waits for the sweep's word from now on, in this process and in
/// those that it forks.
int gateCalls() {
    std::array<sock_filter, 2 * std::size(HARMLESS_CALLS) + 2> filter{};
    auto* next = filter.data();
    *next++ = BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr));
    for (const long call : HARMLESS_CALLS) {
        *next++ = BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call), 0, 1);
        *next++ = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
    }
    *next = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF);
    const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    return static_cast<int>(
        syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &program));
}

void sendDescriptor(int channel, int descriptor) {
    char nothing = 0;
    iovec data{&nothing, 1};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
    msghdr message{};
    message.msg_iov = &data;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    cmsghdr* header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(sizeof(int));
    std::memcpy(CMSG_DATA(header), &descriptor, sizeof descriptor);
    if (sendmsg(channel, &message, 0) < 0) {
        endWith("interposer: cannot hand over the calls\n");
    }
}

__attribute__((constructor)) void begin() {
    const int pageFile = descriptorNamedBy(PAGE_VARIABLE);
    const int channel = descriptorNamedBy(CHANNEL_VARIABLE);
    void* memory =
        mmap(nullptr, sizeof(SharedPage), PROT_READ | PROT_WRITE, MAP_SHARED, pageFile, 0);
    if (memory == MAP_FAILED) {
        endWith("interposer: no shared page\n");
    }
    close(pageFile);
    const int listener = gateCalls();
    if (listener < 0) {
        endWith("interposer: no filter for the calls\n");
    }
    sendDescriptor(channel, listener);
    close(listener);
    close(channel);
    page = static_cast<SharedPage*>(memory);
    page->process = getpid();
    page->threads = 1;
    page->isCounting = true;
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) {
    return mayAllocate() ? __libc_malloc(size) : nullptr;
}

void* calloc(std::size_t count, std::size_t size) {
    return mayAllocate() ? __libc_calloc(count, size) : nullptr;
}

void* realloc(void* memory, std::size_t size) {
    return mayAllocate() ? __libc_realloc(memory, size) : nullptr;
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return mayAllocate() ? __libc_memalign(alignment, size) : nullptr;
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    *memory = aligned_alloc(alignment, size);
    return *memory == nullptr ? ENOMEM : 0;
}

pid_t fork() {
    static const auto original = reinterpret_cast<decltype(&fork)>(dlsym(RTLD_NEXT, "fork"));
    const pid_t child = original();
    if (child <= 0) {
        page->process = getpid();
    }
    return child;
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, ThreadBody body,
                   void* argument) {
    static const auto original =
        reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    NewThread& created = newThreads.at(static_cast<std::size_t>(numberOfNextThread()));
    created = {body, argument};
    return original(thread, attributes, runNumbered, &created);
}
}
