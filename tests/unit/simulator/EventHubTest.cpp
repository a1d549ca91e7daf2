#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "simulator/web/EventHub.h"

namespace sim {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds AT_ONCE{0};
constexpr std::chrono::minutes LONG{1};

TEST(EventHub, HandsEachEventToEveryBrowserInItsOrder) {
    EventHub hub;
    const EventHub::Seat one = hub.join();
    const EventHub::Seat other = hub.join();
    hub.publish("first");
    hub.publish("second");
    for (const EventHub::Seat& seat : {one, other}) {
        EXPECT_TRUE(seat.past.empty());
        EXPECT_EQ(seat.queue->pop(AT_ONCE), "first");
        EXPECT_EQ(seat.queue->pop(AT_ONCE), "second");
        EXPECT_EQ(seat.queue->pop(AT_ONCE), std::nullopt);
    }
}

TEST(EventHub, ABrowserWaitsForAnEvent) {
    EventHub hub;
    const EventHub::Seat seat = hub.join();
    std::thread publisher([&hub] { hub.publish("late"); });
    EXPECT_EQ(seat.queue->pop(LONG), "late");
    publisher.join();
}

TEST(EventHub, WhoComesLateGetsTheLatest) {
    EventHub hub;
    for (std::size_t number = 1; number <= EventHub::KEPT_EVENTS + 5; ++number) {
        hub.publish(std::to_string(number));
    }
    const EventHub::Seat seat = hub.join();
    ASSERT_EQ(seat.past.size(), EventHub::KEPT_EVENTS);
    EXPECT_EQ(seat.past.front(), "6");
    EXPECT_EQ(seat.past.back(), "305");
    EXPECT_EQ(seat.queue->pop(AT_ONCE), std::nullopt);
}

TEST(EventHub, KeepsNoMoreBytesThanItMay) {
    EventHub hub;
    hub.publish(std::string(EventHub::KEPT_BYTES, 'x'));
    hub.publish("short");
    EXPECT_EQ(hub.join().past, std::vector<std::string>{"short"});
    hub.publish(std::string(EventHub::KEPT_BYTES + 1, 'x'));
    EXPECT_TRUE(hub.join().past.empty());
}

TEST(EventHub, HasSeatsForSomeBrowsersAndForMoreWhenTheseLeave) {
    EventHub hub;
    std::vector<EventHub::Seat> seats;
    for (std::size_t number = 0; number < EventHub::MAX_BROWSERS; ++number) {
        seats.push_back(hub.join());
        EXPECT_NE(seats.back().queue, nullptr);
    }
    EXPECT_EQ(hub.join().queue, nullptr);
    seats.pop_back();
    EXPECT_NE(hub.join().queue, nullptr);
}

TEST(EventHub, LeavesABrowserThatLagsAndNoOther) {
    EventHub hub;
    const EventHub::Seat lagging = hub.join();
    const EventHub::Seat quick = hub.join();
    for (std::size_t number = 0; number <= EventQueue::MAX_EVENTS; ++number) {
        EXPECT_FALSE(lagging.queue->hasEnded());
        hub.publish("event");
        EXPECT_EQ(quick.queue->pop(AT_ONCE), "event");
    }
    EXPECT_TRUE(lagging.queue->hasEnded());
    EXPECT_EQ(lagging.queue->pop(AT_ONCE), std::nullopt);
    EXPECT_FALSE(quick.queue->hasEnded());
}

TEST(EventHub, LeavesABrowserForWhichTooManyBytesWait) {
    EventHub hub;
    const EventHub::Seat seat = hub.join();
    hub.publish(std::string(EventQueue::MAX_BYTES, 'x'));
    EXPECT_FALSE(seat.queue->hasEnded());
    hub.publish("x");
    EXPECT_TRUE(seat.queue->hasEnded());
}

TEST(EventHub, ItsEndReachesThoseWhoWaitAndThoseWhoCome) {
    EventHub hub;
    const EventHub::Seat seat = hub.join();
    std::thread ender([&hub] { hub.end(); });
    EXPECT_EQ(seat.queue->pop(LONG), std::nullopt);
    ender.join();
    EXPECT_TRUE(seat.queue->hasEnded());
    EXPECT_EQ(hub.join().queue, nullptr);
}

}  // namespace
}  // namespace sim
