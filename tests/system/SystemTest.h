#pragma once

#include <gtest/gtest.h>

#include "tests/support/FlashFiles.h"
#include "tests/system/SanitizerReports.h"

/// What every system test has: fresh shared storage, and the demand that no sanitizer finds
/// anything in a program that the test has started.
class SystemTest : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(reports.text(), ""); }

    SanitizerReports reports;
    FlashFiles flash;
};
