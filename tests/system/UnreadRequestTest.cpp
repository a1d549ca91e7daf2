#include <gtest/gtest.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <csignal>
#include <string>

#include "tests/support/FrameClient.h"
#include "tests/support/Patience.h"
#include "tests/support/Text.h"
#include "tests/system/DaemonTest.h"
#include "tests/system/Exchanges.h"

namespace {

using exchanges::DONE;
using exchanges::expectServed;
using exchanges::FULL;
using exchanges::FULL_REPLY;
using exchanges::GET_ALL;
using exchanges::LIST_REQUEST;

constexpr auto REPLY_TO_CHANGE = "{\n\t\"result\" : \"OK\",\n\t\"reticles\" : null\n}";

/// An RTOS that does not read while a request is on its way that is far larger than what the kernel
/// holds for a connection.
class UnreadRequestTest : public DaemonTest {
protected:
    // Two bytes of the client's become six on the RTOS link.
    static constexpr std::size_t DEGREE_SIGNS = 2'000'000;

    /// Has the service send the request, until it can send no more.
    void askWithoutReading() {
        client.sendFrame(R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"data":"","name":")" +
                         repeated("°", DEGREE_SIGNS) + "\"}]}");
        ASSERT_TRUE(eventually([this] { return bytesWaiting() > 0 && service.info().isAsleep(); }));
        EXPECT_LT(bytesWaiting(), wholeRequest.size());
    }

    /// What the service has sent and the RTOS has not read.
    [[nodiscard]] std::size_t bytesWaiting() {
        int bytes = 0;
        ioctl(rtos.link().descriptor(), FIONREAD, &bytes);
        return static_cast<std::size_t>(bytes);
    }

    /// All that comes up to a list request.
    [[nodiscard]] std::string receiveBeforeListRequest() {
        std::string received;
        while (!received.ends_with(LIST_REQUEST)) {
            const std::string more = rtos.receive(std::max<std::size_t>(1, bytesWaiting()));
            if (more.empty()) {
                ADD_FAILURE() << "no list request";
                return received;
            }
            received += more;
        }
        return received.substr(0, received.size() - LIST_REQUEST.size());
    }

    const std::string wholeRequest = "[\n\t{\n\t\t\"msg_id\" : 78,\n\t\t\"param2_name\" : \"" +
                                     repeated("\\u00b0", DEGREE_SIGNS) +
                                     "\",\n\t\t\"param3_data\" : \"a:/new_reticle_data0\"\n\t}\n]";
    FrameClient client;
};

TEST_F(UnreadRequestTest, WaitsAndArrivesWholeOnceItIsReadAndLaterOnesAreAnsweredInOrder) {
    FrameClient later;
    askWithoutReading();
    later.sendFrame(GET_ALL);
    EXPECT_TRUE(rtos.receive(wholeRequest.size()) == wholeRequest);
    EXPECT_TRUE(rtos.isQuiet());
    rtos.answer(DONE);
    EXPECT_EQ(rtos.exchange(FULL), LIST_REQUEST);
    EXPECT_EQ(client.readReply(), REPLY_TO_CHANGE);
    EXPECT_EQ(rtos.exchange(FULL), LIST_REQUEST);
    EXPECT_EQ(later.readReply(), FULL_REPLY);
    expectServed(client, rtos);
}

TEST_F(UnreadRequestTest, IsCutShortWhenTheServiceIsStoppedAndGoesOn) {
    askWithoutReading();
    kill(service.pid(), SIGSTOP);
    EXPECT_TRUE(eventually([this] { return service.info().isStopped(); }));
    kill(service.pid(), SIGCONT);
    // The service takes what it has sent for the whole request, and waits for the answer.
    rtos.answer(DONE);
    const std::string received = receiveBeforeListRequest();
    EXPECT_TRUE(wholeRequest.starts_with(received));
    EXPECT_LT(received.size(), wholeRequest.size());
    rtos.answer(FULL);
    EXPECT_EQ(client.readReply(), REPLY_TO_CHANGE);
    expectServed(client, rtos);
}

}  // namespace
