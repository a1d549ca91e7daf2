#include <gtest/gtest.h>

#include <cerrno>
#include <iostream>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

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

TEST(LogTest, LinesOfDifferentThreadsDoNotMix) {
    constexpr int THREADS = 4;
    constexpr int LINES = 200;
    const OutputCapture output;
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < THREADS; ++i) {
            threads.emplace_back([i] {
                for (int line = 0; line < LINES; ++line) {
                    logLine(std::cerr, "a", i, "b", i, "c", i);
                    logSystemError(ENOENT);
                }
            });
        }
    }
    std::istringstream lines(output.err());
    std::multiset<std::string> seen;
    for (std::string line; std::getline(lines, line);) {
        seen.insert(line);
    }
    EXPECT_EQ(seen.count("No such file or directory: No such file or directory"), THREADS * LINES);
    for (const char* line : {"a0b0c0", "a1b1c1", "a2b2c2", "a3b3c3"}) {
        EXPECT_EQ(seen.count(line), LINES) << line;
    }
    EXPECT_EQ(seen.size(), 2U * THREADS * LINES);
}

}  // namespace
}  // namespace reticled
