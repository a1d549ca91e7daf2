#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "simulator/device/Fault.h"

namespace sim {
namespace {

using testing::HasSubstr;

void expectRefused(const std::string& text, const std::string& complaint) {
    try {
        (void)parseFault(text);
        ADD_FAILURE() << text << " was taken";
    } catch (const std::invalid_argument& error) {
        EXPECT_THAT(error.what(), HasSubstr(complaint)) << text;
    }
}

TEST(Fault, IsReadWithEachKind) {
    EXPECT_EQ(parseFault("refuse:7"), (Fault{FaultKind::REFUSE, 7, {}}));
    EXPECT_EQ(parseFault("no-param"), (Fault{FaultKind::NO_PARAM, 0, {}}));
    EXPECT_EQ(parseFault("bad-list"), (Fault{FaultKind::BAD_LIST, 0, {}}));
    EXPECT_EQ(parseFault("empty-list"), (Fault{FaultKind::EMPTY_LIST, 0, {}}));
    EXPECT_EQ(parseFault("missing-file"), (Fault{FaultKind::MISSING_FILE, 0, {}}));
    EXPECT_EQ(parseFault("long"), (Fault{FaultKind::LONG, 0, {}}));
    EXPECT_EQ(parseFault("garbage"), (Fault{FaultKind::GARBAGE, 0, {}}));
    EXPECT_EQ(parseFault("split:200"), (Fault{FaultKind::SPLIT, 200, {}}));
    EXPECT_EQ(parseFault("delay:5000"), (Fault{FaultKind::DELAY, 5000, {}}));
    EXPECT_EQ(parseFault("silent"), (Fault{FaultKind::SILENT, 0, {}}));
    EXPECT_EQ(parseFault("close"), (Fault{FaultKind::CLOSE, 0, {}}));
    EXPECT_EQ(parseFault("reset"), (Fault{FaultKind::RESET, 0, {}}));
}

TEST(Fault, IsReadWithItsExchange) {
    EXPECT_EQ(parseFault("delay:0@12"), (Fault{FaultKind::DELAY, 0, 12}));
    EXPECT_EQ(parseFault("silent@1"), (Fault{FaultKind::SILENT, 0, 1}));
    EXPECT_EQ(parseFault("refuse:-3@2"), (Fault{FaultKind::REFUSE, -3, 2}));
}

TEST(Fault, HitsItsExchangeOrEveryOne) {
    EXPECT_TRUE(parseFault("silent@2").hits(2));
    EXPECT_FALSE(parseFault("silent@2").hits(1));
    EXPECT_FALSE(parseFault("silent@2").hits(3));
    EXPECT_TRUE(parseFault("silent").hits(1));
    EXPECT_TRUE(parseFault("silent").hits(1000));
}

TEST(Fault, IsRefusedWithTheReason) {
    expectRefused("", "no fault is called ''");
    expectRefused("Silent", "no fault is called 'Silent'");
    expectRefused("silent:1", "silent takes no argument");
    expectRefused("silent:", "silent takes no argument");
    expectRefused("delay", "delay needs its argument: delay:MS");
    expectRefused("delay:", "MS of delay:MS must be a number from 0");
    expectRefused("delay:-1", "MS of delay:MS must be a number from 0");
    expectRefused("delay:1.5", "MS of delay:MS must be a number");
    expectRefused("split:99999999999", "MS of split:MS must be a number");
    expectRefused("refuse:no", "CODE of refuse:CODE must be a number");
    expectRefused("refuse:0", "CODE of refuse:CODE cannot be 0");
    expectRefused("silent@", "N of @N must be a number from 1");
    expectRefused("silent@0", "N of @N must be a number from 1");
    expectRefused("silent@1@2", "N of @N must be a number from 1");
    expectRefused("@1", "no fault is called ''");
}

TEST(Fault, HelpDescribesEachKind) {
    for (const char* head :
         {"refuse:CODE", "no-param", "bad-list", "empty-list", "missing-file", "long", "garbage",
          "split:MS", "delay:MS", "silent", "close", "reset"}) {
        EXPECT_THAT(faultHelp(), HasSubstr("  " + std::string(head) + "\n      "));
    }
}

}  // namespace
}  // namespace sim
