#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "tests/replay/Expectations.h"
#include "tests/replay/ServiceRun.h"
#include "tests/system/SystemTest.h"

namespace {

/// Set by scripts/replay-expectations: what comes is written down instead of compared.
bool isWriting() {
    return std::getenv("REPLAY_EXPECTATIONS") != nullptr;
}

/// gtest takes letters, digits and underscores.
std::string testName(const testing::TestParamInfo<std::string>& session) {
    std::string name = session.param;
    std::replace_if(
        name.begin(), name.end(),
        [](unsigned char character) { return std::isalnum(character) == 0; }, '_');
    return name;
}

using Replies = std::vector<std::optional<std::string>>;

/// Reply by reply: a failure shows the one that differs, not all of them.
void expectSame(const Replies& replies, const Replies& expected) {
    ASSERT_EQ(replies.size(), expected.size());
    for (std::size_t number = 0; number < replies.size(); ++number) {
        EXPECT_EQ(replies[number], expected[number]) << "reply " << number + 1;
    }
}

/// A device that plays a session, and a client that sends its frames, get from the service what
/// they got before.
class SessionsTest : public SystemTest, public testing::WithParamInterface<std::string> {};

TEST_P(SessionsTest, IsServedAsBefore) {
    const Expectations expectations(GetParam());
    if (isWriting()) {
        expectations.makeClientTexts();
    }
    ServiceRun run({"--replay", expectations.sessionPath()});
    const Replies replies = run.exchangeAll(expectations.clientTexts());
    ASSERT_TRUE(run.finish());
    if (isWriting()) {
        expectations.writeReplies(replies);
    }
    expectSame(replies, expectations.replies());
}

INSTANTIATE_TEST_SUITE_P(Replay, SessionsTest, testing::ValuesIn(Expectations::sessionNames()),
                         testName);

}  // namespace
