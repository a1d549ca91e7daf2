#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "base/SingleInstance.h"
#include "net/PacketStorage.h"
#include "processing/JsonHandlerDirector.h"
#include "processing/JsonRetriever.h"
#include "rtos/LocalCommunicator.h"

namespace reticled {
namespace {

class Component : public SingleInstance<Component> {
public:
    Component() { ++made; }

    inline static std::atomic<int> made{0};
};

/// What many threads get that ask at the same moment.
template <class AnyComponent>
std::vector<std::shared_ptr<AnyComponent>> askFromManyThreads() {
    constexpr int THREADS = 16;
    std::vector<std::shared_ptr<AnyComponent>> instances(THREADS);
    std::barrier start(THREADS);
    std::vector<std::jthread> threads;
    for (auto& instance : instances) {
        threads.emplace_back([&] {
            start.arrive_and_wait();
            instance = AnyComponent::getInstance();
        });
    }
    threads.clear();
    return instances;
}

TEST(SingleInstanceTest, ManyThreadsThatAskAtOnceGetTheOneInstance) {
    const auto instances = askFromManyThreads<Component>();
    EXPECT_EQ(Component::made, 1);
    for (const auto& instance : instances) {
        EXPECT_EQ(instance, instances.front());
        EXPECT_NE(instance, nullptr);
    }
}

TEST(SingleInstanceTest, EachRequestIsANewOwner) {
    const auto first = Component::getInstance();
    const auto count = first.use_count();
    const auto second = Component::getInstance();
    EXPECT_EQ(first.use_count(), count + 1);
}

TEST(SingleInstanceTest, InstanceOutlivesItsOwners) {
    const Component* instance = Component::getInstance().get();
    EXPECT_EQ(Component::getInstance().get(), instance);
}

template <class AnyComponent>
class LongLivedComponentTest : public testing::Test {};

using LongLivedComponents =
    testing::Types<JsonRetriever, PacketStorage, LocalCommunicator, JsonHandlerDirector>;
TYPED_TEST_SUITE(LongLivedComponentTest, LongLivedComponents);

TYPED_TEST(LongLivedComponentTest, HasOneInstance) {
    const auto instances = askFromManyThreads<TypeParam>();
    for (const auto& instance : instances) {
        EXPECT_EQ(instance, instances.front());
        EXPECT_NE(instance, nullptr);
    }
}

class FailingComponent : public SingleInstance<FailingComponent> {
public:
    FailingComponent() { throw std::runtime_error("cannot be made"); }
};

TEST(SingleInstanceTest, WhatTheConstructorThrowsReachesTheCaller) {
    EXPECT_THROW(static_cast<void>(FailingComponent::getInstance()), std::runtime_error);
}

}  // namespace
}  // namespace reticled
