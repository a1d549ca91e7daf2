#include <gtest/gtest.h>

#include "tools/reticlectl/doctor/runProgram.h"

namespace reticlectl {

namespace {

TEST(RunProgram, TellsWhatBothStreamsGot) {
    const auto run = runProgram({"sh", "-c", "echo one; echo two >&2; cat"});
    ASSERT_TRUE(run);
    EXPECT_TRUE(run->hasSucceeded);
    EXPECT_EQ(run->output, "one\ntwo\n");
}

TEST(RunProgram, TellsAFailure) {
    const auto run = runProgram({"sh", "-c", "echo no; exit 3"});
    ASSERT_TRUE(run);
    EXPECT_FALSE(run->hasSucceeded);
    EXPECT_EQ(run->output, "no\n");
}

TEST(RunProgram, TellsThatThereIsNone) {
    EXPECT_FALSE(runProgram({"a-program-that-nobody-has"}));
}

TEST(RunProgram, EndsWhatDoesNotEnd) {
    for (const char* script : {"exec sleep 600", "exec sleep 600 >&- 2>&-"}) {
        const auto run = runProgram({"sh", "-c", script}, std::chrono::milliseconds(200));
        ASSERT_TRUE(run) << script;
        EXPECT_FALSE(run->hasSucceeded) << script;
    }
}

}  // namespace

}  // namespace reticlectl
