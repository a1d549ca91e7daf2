#include <gtest/gtest.h>
#include <sched.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <limits>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "net/JsonQueue.h"
#include "tests/support/Patience.h"
#include "tests/unit/service/LinkSeams.h"
#include "tests/unit/service/peers/JsonQueueTestPeer.h"

namespace reticled {
namespace {

using namespace std::chrono_literals;

constexpr int CAPACITY = 15;
constexpr int NEVER_FULL = std::numeric_limits<int>::max();

/// A thread that pops `total` elements, one after the other.
class Consumer {
public:
    Consumer(JsonQueue<int>& queue, int total) : Consumer(queue, total, [] {}) {}

    /// \param prepare runs in the thread before each pop.
    Consumer(JsonQueue<int>& queue, int total, const std::function<void()>& prepare)
        : _thread([this, &queue, total, prepare] {
              for (int i = 0; i < total; ++i) {
                  prepare();
                  static_cast<void>(queue.waitAndPop());
                  ++_taken;
              }
          }) {}

    [[nodiscard]] int taken() const { return _taken; }

    /// Waits until it has taken `count`, in vain only if it sleeps for good. Does not sleep itself:
    /// the stress lies in how soon the next push comes.
    [[nodiscard]] bool hasTaken(int count) const {
        for (const auto end = Clock::now() + PATIENCE; _taken < count;) {
            if (Clock::now() > end) {
                return false;
            }
            std::this_thread::yield();
        }
        return true;
    }

private:
    using Clock = std::chrono::steady_clock;

    std::atomic<int> _taken{0};
    std::jthread _thread;
};

/// Keeps this thread on the `number`th processor that we may use, so that producers and consumers
/// really run at the same time.
void stayOnProcessor(int number) {
    cpu_set_t allowed;
    sched_getaffinity(0, sizeof allowed, &allowed);
    const int wanted = number % CPU_COUNT(&allowed);
    int seen = 0;
    for (std::size_t processor = 0; processor < CPU_SETSIZE; ++processor) {
        if (CPU_ISSET(processor, &allowed) && seen++ == wanted) {
            cpu_set_t only;
            CPU_ZERO(&only);
            CPU_SET(processor, &only);
            sched_setaffinity(0, sizeof only, &only);
        }
    }
}

TEST(JsonQueueTest, ElementsComeOutInTheOrderTheyWerePushed) {
    JsonQueue<int> queue(CAPACITY);
    for (int i = 0; i < CAPACITY; ++i) {
        queue.push(std::make_shared<int>(i));
    }
    for (int i = 0; i < CAPACITY; ++i) {
        EXPECT_EQ(*queue.waitAndPop(), i);
    }
}

TEST(JsonQueueTest, TheElementItselfComesOutNotACopy) {
    JsonQueue<int> queue(CAPACITY);
    const auto pushed = std::make_shared<int>(1);
    queue.push(pushed);
    EXPECT_EQ(pushed.use_count(), 2);
    EXPECT_EQ(queue.waitAndPop(), pushed);
    EXPECT_EQ(pushed.use_count(), 1);
}

TEST(JsonQueueTest, SixteenthElementIsDroppedAndAfterAPopANewOneFits) {
    JsonQueue<int> queue(CAPACITY);
    for (int i = 0; i < CAPACITY; ++i) {
        queue.push(std::make_shared<int>(i));
    }
    auto sixteenth = std::make_shared<int>(CAPACITY);
    const std::weak_ptr<int> dropped = sixteenth;
    queue.push(std::move(sixteenth));
    EXPECT_TRUE(dropped.expired());

    EXPECT_EQ(*queue.waitAndPop(), 0);
    queue.push(std::make_shared<int>(100));
    for (int i = 1; i < CAPACITY; ++i) {
        EXPECT_EQ(*queue.waitAndPop(), i);
    }
    EXPECT_EQ(*queue.waitAndPop(), 100);
    EXPECT_TRUE(queue.empty());
}

TEST(JsonQueueTest, EmptyTellsWhetherSomethingIsQueued) {
    JsonQueue<int> queue(CAPACITY);
    EXPECT_TRUE(queue.empty());
    queue.push(std::make_shared<int>(1));
    EXPECT_FALSE(queue.empty());
    static_cast<void>(queue.waitAndPop());
    EXPECT_TRUE(queue.empty());
}

TEST(JsonQueueTest, PopOnAnEmptyQueueBlocksUntilTheNextPushAndReturnsIt) {
    JsonQueue<int> queue(CAPACITY);
    auto popped = std::async(std::launch::async, [&] { return queue.waitAndPop(); });
    EXPECT_EQ(popped.wait_for(50ms), std::future_status::timeout);
    const auto element = std::make_shared<int>(7);
    queue.push(element);
    EXPECT_EQ(popped.get(), element);
}

TEST(JsonQueueTest, EachPushWakesOneOfSeveralConsumers) {
    JsonQueue<int> queue(CAPACITY);
    const Consumer first(queue, 1);
    const Consumer second(queue, 1);
    queue.push(std::make_shared<int>(1));
    ASSERT_TRUE(eventually([&] { return first.taken() + second.taken() == 1; }));
    queue.push(std::make_shared<int>(2));
    EXPECT_TRUE(first.hasTaken(1));
    EXPECT_TRUE(second.hasTaken(1));
}

TEST(JsonQueueTest, DestructionReleasesWhatIsStillQueued) {
    const auto element = std::make_shared<int>(1);
    {
        JsonQueue<int> queue(CAPACITY);
        queue.push(element);
        queue.push(element);
    }
    EXPECT_EQ(element.use_count(), 1);
}

// Pushes and pops count under different mutexes: a plain counter drifts, and with it the capacity.
TEST(JsonQueueTest, CountDoesNotDriftWhilePushesAndPopsRunAtTheSameTime) {
    constexpr auto DURATION = 500ms;
    constexpr int PAIRS = 2;
    static constexpr int LAST = -1;
    JsonQueue<int> queue(NEVER_FULL);
    const auto produce = [&queue, end = std::chrono::steady_clock::now() + DURATION] {
        stayOnProcessor(0);
        while (std::chrono::steady_clock::now() < end) {
            queue.push(std::make_shared<int>(0));
        }
        queue.push(std::make_shared<int>(LAST));
    };
    const auto consume = [&queue] {
        stayOnProcessor(1);
        while (*queue.waitAndPop() != LAST) {
        }
    };
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < PAIRS; ++i) {
            threads.emplace_back(produce);
            threads.emplace_back(consume);
        }
    }
    int left = 0;
    for (; !queue.empty(); ++left) {
        static_cast<void>(queue.waitAndPop());
    }
    EXPECT_EQ(JsonQueueTestPeer::size(queue), 0) << "with " << left << " popped afterwards";
}

// A consumer that has found the queue empty and is about to sleep must hear of a push that comes
// just then. Both sides dawdle at the two places between which the notification could be missed.
TEST(JsonQueueTest, ConsumerThatIsAboutToSleepDoesNotMissAPush) {
    constexpr int ROUNDS = 2000;
    static constexpr int LONGEST_PAUSE_NS = 20'000;
    static constexpr auto DAWDLE = std::chrono::nanoseconds(LONGEST_PAUSE_NS);
    JsonQueue<int> queue(CAPACITY);
    const Consumer consumer(queue, ROUNDS, [random = std::minstd_rand()]() mutable {
        seams::dawdleBeforeWait = DAWDLE;
        seams::dawdle(std::chrono::nanoseconds(random() % LONGEST_PAUSE_NS));
    });
    bool isAwake = true;
    for (int i = 0; i < ROUNDS && isAwake; ++i) {
        auto element = std::make_shared<int>(i);
        seams::dawdleBeforeAllocation = DAWDLE;
        queue.push(std::move(element));
        seams::dawdleBeforeAllocation = 0ns;
        isAwake = consumer.hasTaken(i + 1);
    }
    EXPECT_TRUE(isAwake) << "asleep on a filled queue after " << consumer.taken() << " pops";
    while (consumer.taken() < ROUNDS) {
        queue.push(std::make_shared<int>(0));
    }
}

}  // namespace
}  // namespace reticled
