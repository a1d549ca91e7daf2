#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <future>
#include <memory>
#include <string>

#include "processing/PacketsHandler.h"
#include "tests/support/LinkTexts.h"
#include "tests/support/Patience.h"
#include "tests/support/ScriptedRtos.h"
#include "tests/support/Text.h"
#include "tests/unit/service/OutputCapture.h"
#include "tests/unit/service/OwnProcess.h"
#include "tests/unit/service/peers/JsonHandlerTestPeer.h"

namespace reticled {
namespace {

using exchanges::LIST_REQUEST;

constexpr auto GET_ALL = R"({"action":"RETICLES_GET_ALL"})";
constexpr auto REFUSAL = R"([{"ret_val":6}])";
constexpr auto REFUSED = "{\n\t\"result\" : \"RETICLES_COUNT_OUT_OF_BOUNDS\"\n}";
constexpr auto REQUEST_LINE_START = "PacketsHandler::_handlerRoutine, json req: ";

std::shared_ptr<Packet> push(int socket, const std::string& request) {
    auto packet = std::make_shared<Packet>(socket, request);
    PacketStorage::getInstance()->push(REQUEST_QUEUE, packet);
    return packet;
}

std::shared_ptr<Packet> nextReply() {
    return PacketStorage::getInstance()->pop(RESPONSE_QUEUE);
}

/// The process's one worker, with an RTOS link of its own for each test.
class PacketsHandlerTest : public testing::Test {
protected:
    PacketsHandlerTest() {
        const auto handler = JsonHandlerDirector::getInstance()->getHandler(GET_ALL);
        JsonHandlerTestPeer::link(*handler) = std::make_shared<LocalCommunicator>();
    }

    OutputCapture output;
    ScriptedRtos rtos;
    std::shared_ptr<PacketsHandler> worker = PacketsHandler::getInstance();
};

TEST_F(PacketsHandlerTest, ReplyComesInThePacketThatBroughtTheRequest) {
    const auto packet = push(17, GET_ALL);
    EXPECT_EQ(rtos.exchange(REFUSAL), LIST_REQUEST);
    EXPECT_EQ(nextReply(), packet);
    EXPECT_EQ(packet->_socket, 17);
    EXPECT_EQ(packet->_data, REFUSED);
    std::string requestLine(REQUEST_LINE_START);
    requestLine.append(GET_ALL).append("\n");
    EXPECT_TRUE(output.out().starts_with(requestLine));
}

TEST_F(PacketsHandlerTest, RequestsAreAnsweredOneAfterTheOther) {
    const auto first = push(1, GET_ALL);
    const auto second = push(2, GET_ALL);
    EXPECT_EQ(rtos.receiveRequest(), LIST_REQUEST);
    EXPECT_EQ(countOf(REQUEST_LINE_START, output.out()), 1U);
    EXPECT_TRUE(rtos.isQuiet());
    rtos.answer(REFUSAL);
    EXPECT_EQ(nextReply(), first);
    EXPECT_EQ(rtos.exchange(REFUSAL), LIST_REQUEST);
    EXPECT_EQ(nextReply(), second);
    EXPECT_EQ(countOf(REQUEST_LINE_START, output.out()), 2U);
}

TEST_F(PacketsHandlerTest, HandlerThatThrowsCostsOneReplyAndALine) {
    const auto failing = push(1, GET_ALL);
    const auto next = push(2, GET_ALL);
    EXPECT_EQ(rtos.exchange("no json"), LIST_REQUEST);
    EXPECT_EQ(rtos.exchange(REFUSAL), LIST_REQUEST);
    EXPECT_EQ(nextReply(), next);
    EXPECT_EQ(failing->_data, GET_ALL);
    EXPECT_EQ(output.err(),
              "_handlerRoutine, exception: Corrupted json packet was received fromRTOS\n"
              "json value: 6\n");
}

TEST(PacketsHandlerDeathTest, DestructionWaitsForTheNextRequestAndItsReply) {
    OwnProcess process([] {
        auto worker = std::make_unique<PacketsHandler>();
        const OutputCapture output;
        // Once the failure is logged, the worker is about to wait for the next request.
        push(1, "{}");
        if (!eventually([&] { return countOf("\n", output.err()) == 1; })) {
            return EXIT_FAILURE;
        }
        auto destruction = std::async(std::launch::async, [&] { worker.reset(); });
        const bool waits =
            destruction.wait_for(std::chrono::milliseconds(50)) == std::future_status::timeout;
        const bool ends = eventually([&] {
            push(1, "{}");
            return destruction.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
        });
        return waits && ends ? EXIT_SUCCESS : EXIT_FAILURE;
    });
    EXPECT_EQ(process.waitForEnd(), EXIT_SUCCESS);
}

}  // namespace
}  // namespace reticled
