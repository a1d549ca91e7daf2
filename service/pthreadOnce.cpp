// libc's own hands an exception that leaves the routine to the shared libgcc, which knows nothing of it where
// another is linked in: the process aborts. A component that cannot start throws just so.
#include <pthread.h>

#include <atomic>

namespace {

constexpr int NEW = PTHREAD_ONCE_INIT;
constexpr int RUNNING = 1;
constexpr int DONE = 2;

void changeState(std::atomic_ref<pthread_once_t> state, int value) {
    state.store(value);
    state.notify_all();
}

}  // namespace

/// As libc's; a routine that throws leaves the next caller to try again.
extern "C" int pthread_once(pthread_once_t* control, void (*routine)()) {
    const std::atomic_ref<pthread_once_t> state(*control);
    int seen = NEW;
    while (!state.compare_exchange_strong(seen, RUNNING)) {
        if (seen == DONE) {
            return 0;
        }
        state.wait(RUNNING);
        seen = NEW;
    }
    try {
        routine();
    } catch (...) {
        changeState(state, NEW);
        throw;
    }
    changeState(state, DONE);
    return 0;
}
