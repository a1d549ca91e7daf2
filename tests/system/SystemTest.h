#pragma once

#include <gtest/gtest.h>

#include "tests/support/FlashFiles.h"
#include "tests/support/Sandbox.h"
#include "tests/system/SanitizerReports.h"

/// What every system test has: an unused network, fresh shared storage, and the demand that no
/// sanitizer finds anything in a program that the test has started.
class SystemTest : public testing::Test {
protected:
    SystemTest() { Sandbox::renewNetwork(); }

    void TearDown() override { EXPECT_EQ(reports.text(), ""); }

    SanitizerReports reports;
    FlashFiles flash;
};
