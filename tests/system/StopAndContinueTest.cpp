#include <gtest/gtest.h>
#include <linux/sockios.h>
#include <sys/ioctl.h>

#include <csignal>
#include <string>

#include "client/FrameFormat.h"
#include "tests/support/FrameClient.h"
#include "tests/support/Patience.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundTest.h"

namespace {

using exchanges::expectServed;
using exchanges::FULL;
using exchanges::FULL_REPLY;
using exchanges::GET_ALL;
using exchanges::LIST_REQUEST;

using reticle::FRAME_HEADER_BYTES;

/// Signals for which nobody has a handler, and which do not end a process: they end system calls all
/// the same, or do not.
class StopAndContinueTest : public ForegroundTest {
protected:
    void expectAsleep() const {
        EXPECT_TRUE(eventually([this] { return service.info().isAsleep(); }));
    }

    void stopAndContinue() const {
        expectAsleep();
        kill(service.pid(), SIGSTOP);
        EXPECT_TRUE(eventually([this] { return service.info().isStopped(); }));
        kill(service.pid(), SIGCONT);
    }

    // Waits until all that was sent is with the service.
    void expectReceived() const {
        EXPECT_TRUE(eventually([this] {
            int bytes = -1;
            return ioctl(client.descriptor(), SIOCOUTQ, &bytes) == 0 && bytes == 0;
        }));
    }

    void send(std::string_view bytes) {
        client.send(bytes);
        expectReceived();
    }

    std::string readReply() {
        return client.receive(FRAME_HEADER_BYTES + FULL_REPLY.size()).substr(FRAME_HEADER_BYTES);
    }

    Connection client{sockets::connectTo(CLIENT_PORT)};
};

TEST_F(StopAndContinueTest, ServiceThatWaitsForClientsAndFramesGoesOnWaiting) {
    stopAndContinue();
    send(FrameClient::header(GET_ALL.size()) + std::string(GET_ALL));
    EXPECT_EQ(rtos.exchange(FULL), LIST_REQUEST);
    EXPECT_EQ(readReply(), FULL_REPLY);
    stopAndContinue();
    FrameClient other;
    expectServed(other, rtos);
    EXPECT_EQ(service.errors(), "json value: 6\njson value: 6\n");
}

TEST_F(StopAndContinueTest, FrameThatHasComeInPartIsWaitedForToItsEnd) {
    const std::string frame = FrameClient::header(GET_ALL.size()) + std::string(GET_ALL);
    constexpr std::size_t IN_HEADER = 9;
    constexpr std::size_t IN_BODY = 11;
    send(frame.substr(0, IN_HEADER));
    stopAndContinue();
    send(frame.substr(IN_HEADER, FRAME_HEADER_BYTES + IN_BODY - IN_HEADER));
    EXPECT_TRUE(service.hasProgress("json is true, length = 29\n"));
    stopAndContinue();
    send(frame.substr(FRAME_HEADER_BYTES + IN_BODY));
    EXPECT_EQ(rtos.exchange(FULL), LIST_REQUEST);
    EXPECT_EQ(readReply(), FULL_REPLY);
    EXPECT_EQ(service.errors(), "json value: 6\n");
}

TEST_F(StopAndContinueTest, RtosIsWaitedForOn) {
    send(FrameClient::header(GET_ALL.size()) + std::string(GET_ALL));
    EXPECT_EQ(rtos.receiveRequest(), LIST_REQUEST);
    stopAndContinue();
    stopAndContinue();
    rtos.answer(FULL);
    EXPECT_EQ(readReply(), FULL_REPLY);
    EXPECT_EQ(service.errors(), "json value: 6\n");
}

TEST_F(StopAndContinueTest, SignalsThatAreIgnoredByDefaultInterruptNothing) {
    send(FrameClient::header(GET_ALL.size()) + std::string(GET_ALL));
    EXPECT_EQ(rtos.receiveRequest(), LIST_REQUEST);
    expectAsleep();
    for (const int ignored : {SIGCHLD, SIGURG, SIGWINCH, SIGCONT}) {
        kill(service.pid(), ignored);
    }
    rtos.answer(FULL);
    EXPECT_EQ(readReply(), FULL_REPLY);
    EXPECT_EQ(service.errors(), "json value: 6\n");
}

TEST_F(StopAndContinueTest, ReplyThatIsBeingSentArrivesWhole) {
    constexpr int SMALL_BUFFER_BYTES = 4096;
    const std::string text(6000000, 'x');
    flash.write("list.json", exchanges::ONE_DOT_LIST);
    flash.write("reticle/dot.svg", text);
    FrameClient slow(SMALL_BUFFER_BYTES);
    slow.sendFrame(GET_ALL);
    EXPECT_EQ(rtos.exchange(exchanges::LIST_ANSWER), LIST_REQUEST);
    EXPECT_EQ(slow.readBytes(1).size(), 1);
    kill(service.pid(), SIGSTOP);
    EXPECT_TRUE(eventually([this] { return service.info().isStopped(); }));
    kill(service.pid(), SIGCONT);
    const std::string whole(exchanges::ONE_DOT_REPLY);
    const std::string inReply = "<circle fill=\\\"red\\\"/>";
    const std::size_t bytes = FRAME_HEADER_BYTES + whole.size() - inReply.size() + text.size();
    EXPECT_NE(slow.readBytes(bytes - 1).find(text), std::string::npos);
}

}  // namespace
