#include <gtest/gtest.h>

#include <cerrno>
#include <iostream>
#include <sstream>
#include <string>

#include "base/Log.h"
#include "tests/unit/service/OutputCapture.h"

namespace reticled {
namespace {

TEST(LogTest, LineIsItsPiecesAndANewline) {
    const OutputCapture output;
    logLine(std::cout, "number ", 5, std::string(", text "), 'c');
    EXPECT_EQ(output.out(), "number 5, text c\n");
    EXPECT_EQ(output.err(), "");
}

TEST(LogTest, TextBringsItsOwnNewline) {
    const OutputCapture output;
    logText(std::cerr, "Wrong json key\n");
    EXPECT_EQ(output.err(), "Wrong json key\n");
    EXPECT_EQ(output.out(), "");
}

TEST(LogTest, LineThatCouldNotBeWrittenDoesNotSilenceLaterOnes) {
    std::ostringstream stream;
    stream.setstate(std::ios::badbit);
    logLine(stream, "line");
    stream.setstate(std::ios::badbit);
    logText(stream, "text\n");
    EXPECT_EQ(stream.str(), "line\ntext\n");
}

TEST(LogTest, SystemErrorIsWrittenTwice) {
    const OutputCapture output;
    logSystemError(ENOENT);
    EXPECT_EQ(output.err(), "No such file or directory: No such file or directory\n");
}

}  // namespace
}  // namespace reticled
