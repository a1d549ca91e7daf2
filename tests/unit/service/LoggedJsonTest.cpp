#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <string>

#include "base/LoggedJson.h"

namespace reticled {
namespace {

std::string inLog(std::string_view text) {
    std::ostringstream line;
    line << LoggedJson(text);
    return line.str();
}

class LoggedJsonTest : public testing::Test {
protected:
    ~LoggedJsonTest() override { LoggedJson::cutBeyond(std::numeric_limits<std::size_t>::max()); }
};

TEST_F(LoggedJsonTest, IsWholeWhenNothingWasSaid) {
    const std::string text(5'000'000, 'x');
    EXPECT_TRUE(inLog(text) == text);
}

TEST_F(LoggedJsonTest, IsItsFirstBytesAndItsSizeWhenItIsLonger) {
    LoggedJson::cutBeyond(3);
    EXPECT_EQ(inLog("{}"), "{}");
    EXPECT_EQ(inLog("[1]"), "[1]");
    EXPECT_EQ(inLog("[12]"), "[12 ... (4 bytes)");
    EXPECT_EQ(inLog("[1234567]"), "[12 ... (9 bytes)");
}

TEST_F(LoggedJsonTest, MayBeItsSizeAlone) {
    LoggedJson::cutBeyond(0);
    EXPECT_EQ(inLog(""), "");
    EXPECT_EQ(inLog("{}"), " ... (2 bytes)");
}

}  // namespace
}  // namespace reticled
