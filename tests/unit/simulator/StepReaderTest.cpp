#include <gtest/gtest.h>

#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "simulator/session/StepReader.h"

namespace sim {
namespace {

std::vector<Step> stepsOf(const std::string& text) {
    std::istringstream input(text);
    StepReader reader(input);
    std::vector<Step> steps;
    while (std::optional<Step> step = reader.next()) {
        steps.push_back(*std::move(step));
    }
    return steps;
}

std::string complaintAbout(const std::string& text) {
    try {
        (void)stepsOf(text);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "none";
}

TEST(StepReader, ReadsInstructionsAndTexts) {
    const std::vector<Step> steps =
        stepsOf("# comment\nfirst\n\nsecond\n    one\n    \n      two\n\nthird\n");
    ASSERT_EQ(steps.size(), 3U);
    EXPECT_EQ(steps[0].line, 2U);
    EXPECT_EQ(steps[0].instruction, "first");
    EXPECT_EQ(steps[0].text, std::nullopt);
    EXPECT_EQ(steps[1].line, 4U);
    EXPECT_EQ(steps[1].text, "one\n\n  two");
    EXPECT_EQ(steps[2].instruction, "third");
}

TEST(StepReader, EmptyLinesWithinATextBelongToIt) {
    EXPECT_EQ(stepsOf("step\n    a\n\n\n    b\n\n\n")[0].text, "a\n\n\nb");
}

TEST(StepReader, TakesSizeAndCodingOffTheInstruction) {
    EXPECT_EQ(stepsOf("rtos answers 2 bytes\n    []\n")[0].instruction, "rtos answers");
    EXPECT_EQ(stepsOf("file a b, 2 bytes\n    []\n")[0].instruction, "file a b");
    EXPECT_EQ(stepsOf("file 5 bytes, 2 bytes\n    []\n")[0].instruction, "file 5 bytes");
    const Step escaped = stepsOf("file x, 2 bytes, escaped\n    \\r\\xff\n")[0];
    EXPECT_EQ(escaped.instruction, "file x");
    EXPECT_EQ(escaped.text, "\r\xff");
    EXPECT_EQ(stepsOf("file bytes\n    []\n")[0].instruction, "file bytes");
}

TEST(StepReader, ASizeMakesAnEmptyText) {
    EXPECT_EQ(stepsOf("file x, 0 bytes\n")[0].text, "");
    EXPECT_EQ(stepsOf("file x\n    \n")[0].text, "");
}

TEST(StepReader, NamesTheLineOfAMistake) {
    EXPECT_EQ(complaintAbout("\n    text\n"), "line 2: this text belongs to no step");
    EXPECT_EQ(complaintAbout("ok\n# c\nstep 3 bytes\n    text\n"),
              "line 3: the text has 4 bytes, not 3");
    EXPECT_EQ(complaintAbout("step 3 bytes\n"), "line 1: the text has 0 bytes, not 3");
    EXPECT_EQ(complaintAbout("step, escaped\n    a\\q\n"), "line 1: '\\q' is no escape");
}

}  // namespace
}  // namespace sim
