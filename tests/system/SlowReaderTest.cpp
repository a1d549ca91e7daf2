#include <gtest/gtest.h>
#include <sys/socket.h>

#include <chrono>
#include <thread>

#include "tests/support/FrameClient.h"
#include "tests/support/Text.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundTest.h"

namespace {

using exchanges::expectServed;
using exchanges::GET_ALL;
using exchanges::LIST_ANSWER;
using exchanges::LIST_REQUEST;

constexpr int SMALL_BUFFER_BYTES = 4096;
// Far more than the kernel buffers for one connection on both sides together.
constexpr std::size_t RETICLE_BYTES = 6000000;
constexpr std::chrono::seconds STALL_LIMIT{30};

/// One client asks for a reply of several megabytes and takes its time to read it.
class SlowReaderTest : public ForegroundTest {
protected:
    explicit SlowReaderTest(int receiveBufferBytes = SMALL_BUFFER_BYTES)
        : slow(receiveBufferBytes) {
        flash.write("list.json", R"([{"reticles":[{"index":1,"name":"Big","data":"big.svg",)"
                                 R"("userColor":"red","isDeletable":1,"isActive":0}]}])");
        flash.write("reticle/big.svg", std::string(RETICLE_BYTES, 'x'));
        slow.sendFrame(GET_ALL);
        EXPECT_EQ(rtos.receiveRequest(), LIST_REQUEST);
        answered = std::chrono::steady_clock::now();
        rtos.answer(LIST_ANSWER);
    }

    FrameClient slow;
    std::chrono::steady_clock::time_point answered;  ///< no reply is under way before
};

TEST_F(SlowReaderTest, SlowReaderIsServedToTheEnd) {
    const std::string expected = R"({
	"result" : "OK",
	"reticles" : 
	[
		{
			"data" : ")" +
                                 std::string(RETICLE_BYTES, 'x') +
                                 R"(",
			"index" : 1,
			"isActive" : false,
			"isDeletable" : true,
			"name" : "Big"
		}
	]
})";
    EXPECT_EQ(slow.readBytes(36), FrameClient::header(static_cast<std::uint32_t>(expected.size())));
    std::string body;
    while (body.size() < expected.size()) {
        const std::string part = slow.readBytes(
            std::min<std::size_t>(SMALL_BUFFER_BYTES, expected.size() - body.size()));
        ASSERT_FALSE(part.empty());
        body += part;
    }
    EXPECT_TRUE(body == expected);
    expectServed(slow, rtos);
}

TEST_F(SlowReaderTest, ReplyIsLoggedBeforeItIsSent) {
    // Nothing is read: the reply cannot have been sent.
    EXPECT_TRUE(service.hasProgress("responseThread: msg to send = {\n\t\"result\" : \"OK\""));
}

// Named apart from the others: these last half a minute and more, and are started first.
class StalledReaderTest : public SlowReaderTest {};

// While it stalls, the replies of all others wait: fifteen of them, what is more is lost.
TEST_F(StalledReaderTest, StalledReaderIsCutOffAndFifteenRepliesHaveWaited) {
    constexpr int WAITING = 15;
    constexpr int LOST = 3;
    FrameClient other;
    EXPECT_EQ(slow.readBytes(1).size(), 1);
    for (int i = 0; i < WAITING; ++i) {
        other.sendFrame(GET_ALL);
        EXPECT_EQ(rtos.exchange(R"([{"ret_val":5}])"), LIST_REQUEST);
    }
    for (int i = 0; i < LOST; ++i) {
        other.sendFrame(GET_ALL);
        EXPECT_EQ(rtos.exchange(R"([{"ret_val":7}])"), LIST_REQUEST);
    }
    for (int i = 0; i < WAITING; ++i) {
        EXPECT_EQ(other.readReply(STALL_LIMIT + PATIENCE),
                  "{\n\t\"result\" : \"RETICLE_INDEX_NOT_FOUND\"\n}");
    }
    EXPECT_GE(std::chrono::steady_clock::now() - answered, STALL_LIMIT);

    EXPECT_EQ(countOf("Error during send response for socket: ", service.errors()), 1);
    EXPECT_TRUE(slow.connection().seesEnd());
    EXPECT_TRUE(
        eventually([&] { return service.info().descriptors().size() == DESCRIPTORS_AT_REST + 1; }));
    expectServed(other, rtos);
}

/// A reader with the kernel's own buffers, which tell the service in large steps what was taken.
class StalledReaderOfDefaultBuffersTest : public SlowReaderTest {
protected:
    static constexpr int DEFAULT_BUFFER = 0;
    StalledReaderOfDefaultBuffersTest() : SlowReaderTest(DEFAULT_BUFFER) {}
};

TEST_F(StalledReaderOfDefaultBuffersTest, ReaderOf150KilobytesIn30SecondsIsServedOn) {
    using Clock = std::chrono::steady_clock;
    constexpr std::size_t BYTES_A_SECOND = 5000;
    EXPECT_NE(slow.readBytes(1), "");
    std::size_t taken = 0;
    while (Clock::now() - answered < STALL_LIMIT * 3 / 2) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        const auto since = std::chrono::duration<double>(Clock::now() - answered);
        const auto due = static_cast<std::size_t>(since.count() * BYTES_A_SECOND);
        taken += slow.readBytes(due - taken).size();
    }
    EXPECT_EQ(service.errors(), "json value: 0\n");
}

}  // namespace
