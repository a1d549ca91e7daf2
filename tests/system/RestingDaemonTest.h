#pragma once

#include <gtest/gtest.h>

#include <cstddef>

#include "tests/support/FrameClient.h"
#include "tests/support/Patience.h"
#include "tests/system/DaemonTest.h"
#include "tests/system/Exchanges.h"
#include "tests/system/Programs.h"

/// A daemon that has served somebody, so that what is made on first use is there, and how much memory it holds.
class RestingDaemonTest : public DaemonTest {
protected:
    RestingDaemonTest() {
        FrameClient first;
        exchanges::expectServed(first, rtos);
        atRest = service.info().residentBytes();
    }

    /// Soon after the last reply: giving 200 MB back takes the kernel 0.1 s, on a busy machine over a second.
    void expectGivenBack() const {
        if (programs::HAVE_OVERHEAD) {
            return;
        }
        EXPECT_TRUE(eventually([this] {
            return service.info().residentBytes() <= atRest + LEFT_BEHIND_AT_MOST_BYTES;
        })) << atRest
            << " bytes at rest before, " << service.info().residentBytes() << " after";
    }

    std::size_t atRest = 0;

private:
    static constexpr std::size_t LEFT_BEHIND_AT_MOST_BYTES = 8'000'000;
};
