#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <optional>

#include "tests/support/FrameClient.h"
#include "tests/support/Ports.h"
#include "tests/support/Sockets.h"
#include "tests/support/Text.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundService.h"
#include "tests/system/SystemTest.h"

namespace {

using exchanges::expectServed;
using exchanges::FULL;
using exchanges::FULL_REPLY;
using exchanges::GET_ALL;
using exchanges::LIST_REQUEST;

constexpr std::size_t LONGEST_ANSWER_BYTES = 1024;
constexpr std::chrono::seconds ANSWER_TIMEOUT{5};

constexpr auto REFUSED =
    "Connection refused: Connection refused\n"
    "_handlerRoutine, exception: Error on attempt to connect to local tcp server \n";
constexpr auto DEAD =
    "Bad file descriptor: Bad file descriptor\n"
    "_handlerRoutine, exception: Error on attempt to connect to local tcp server \n";
constexpr auto FINISHED =
    "_handlerRoutine, exception: Unexpected received FIN of local tcp connection,socket closed\n";
constexpr auto RESET =
    "Connection reset by peer: Connection reset by peer\n"
    "_handlerRoutine, exception: Error after receiving json from local tcp,socket closed\n";
constexpr auto SILENT =
    "Resource temporarily unavailable: Resource temporarily unavailable\n"
    "_handlerRoutine, exception: Error after receiving json from local tcp,socket closed\n";
constexpr auto CORRUPTED =
    "_handlerRoutine, exception: Corrupted json packet was received fromRTOS\n";
// What follows an answer's JSON is not judged, but would show here.
constexpr auto FULL_LINE = "send_and_get: recv json: [{\"ret_val\":6}]\n";

/// Here the RTOS comes when the test says so.
class RtosLinkTest : public SystemTest {
protected:
    RtosLinkTest() { service.waitUntilListening(); }

    // The service has a request and waits for the RTOS.
    void ask(ScriptedRtos& rtos) {
        client().sendFrame(GET_ALL);
        EXPECT_EQ(rtos.receiveRequest(), LIST_REQUEST);
    }

    // The link stays lost: no request reaches an RTOS, no client gets a reply, the service lives.
    void expectDeadLink(ScriptedRtos& rtos, const std::string& firstErrors) {
        EXPECT_TRUE(service.hasError(firstErrors));
        client().sendFrame(GET_ALL);
        EXPECT_TRUE(service.hasError(firstErrors + DEAD));
        client().sendFrame(GET_ALL);
        EXPECT_TRUE(service.hasError(firstErrors + DEAD + DEAD));
        EXPECT_FALSE(rtos.isCalled());
        EXPECT_TRUE(client().connection().isQuiet());
        EXPECT_TRUE(service.isAlive());
    }

    FrameClient& client() {
        if (!_client) {
            _client.emplace();
        }
        return *_client;
    }

    ForegroundService service;

private:
    std::optional<FrameClient> _client;
};

TEST_F(RtosLinkTest, NothingIsConnectedBeforeTheFirstRequest) {
    ScriptedRtos rtos;
    client().sendFrame("not json");
    EXPECT_TRUE(service.hasError("Error: received packet isn't json\n"));
    EXPECT_FALSE(rtos.isCalled());
    expectServed(client(), rtos);
}

TEST_F(RtosLinkTest, OneConnectionCarriesAllExchanges) {
    ScriptedRtos rtos;
    expectServed(client(), rtos);
    FrameClient another;
    expectServed(another, rtos);
    EXPECT_FALSE(rtos.isCalled());
}

TEST_F(RtosLinkTest, AbsentRtosCostsTheReplyAndMayComeLater) {
    client().sendFrame(GET_ALL);
    EXPECT_TRUE(service.hasError(REFUSED));
    client().sendFrame(GET_ALL);
    EXPECT_TRUE(service.hasError(std::string(REFUSED) + REFUSED));
    ScriptedRtos rtos;
    expectServed(client(), rtos);
}

// How long it takes is up to the kernel.
TEST_F(RtosLinkTest, RtosThatDoesNotAcceptCostsTheReplyAndMayAcceptLater) {
    std::ofstream("/proc/sys/net/ipv4/tcp_syn_retries") << 1;
    {
        const FileDescriptor listening = sockets::listenOn(RTOS_PORT, 0);
        const FileDescriptor waiting = sockets::connectTo(RTOS_PORT);
        client().sendFrame(GET_ALL);
        EXPECT_TRUE(service.hasError(
            "Connection timed out: Connection timed out\n"
            "_handlerRoutine, exception: Error on attempt to connect to local tcp server \n"));
    }
    ScriptedRtos rtos;
    expectServed(client(), rtos);
}

TEST_F(RtosLinkTest, SilenceOfFiveSecondsEndsTheLinkForEver) {
    ScriptedRtos rtos;
    const auto asked = std::chrono::steady_clock::now();
    ask(rtos);
    EXPECT_TRUE(rtos.link().seesEnd());
    const auto waited = std::chrono::steady_clock::now() - asked;
    EXPECT_GE(waited, ANSWER_TIMEOUT);
    EXPECT_LT(waited, ANSWER_TIMEOUT + PATIENCE);
    expectDeadLink(rtos, SILENT);
}

TEST_F(RtosLinkTest, ClosingInsteadOfAnsweringEndsTheLinkForEver) {
    ScriptedRtos rtos;
    ask(rtos);
    rtos.link().closeWriting();
    expectDeadLink(rtos, FINISHED);
    EXPECT_TRUE(rtos.link().seesEnd());
}

TEST_F(RtosLinkTest, ResettingInsteadOfAnsweringEndsTheLinkForEver) {
    ScriptedRtos rtos;
    ask(rtos);
    rtos.link().reset();
    expectDeadLink(rtos, RESET);
}

TEST_F(RtosLinkTest, ClosingBetweenExchangesCostsTheNextReply) {
    ScriptedRtos rtos;
    expectServed(client(), rtos);
    rtos.link().closeWriting();
    client().sendFrame(GET_ALL);
    expectDeadLink(rtos, FINISHED);
}

// The descriptor of the dead link is free and goes to the next client, who must not be taken for
// the RTOS.
TEST_F(RtosLinkTest, ClientThatInheritsTheDeadLinksNumberIsNoRtos) {
    ScriptedRtos rtos;
    ask(rtos);
    rtos.link().closeWriting();
    EXPECT_TRUE(service.hasError(FINISHED));
    // The number that the waiting accept has set aside goes to the first to come.
    FrameClient before;
    FrameClient heir;
    heir.sendFrame(GET_ALL);
    EXPECT_TRUE(
        service.hasError("Transport endpoint is already connected: Transport endpoint is already "
                         "connected\n"
                         "_handlerRoutine, exception: Error on attempt to connect to local tcp "
                         "server \n"));
    EXPECT_TRUE(heir.connection().isQuiet());
}

// Sending to a connection that is gone raises SIGPIPE unless it is asked not to.
TEST_F(RtosLinkTest, ResetBetweenExchangesNeverEndsTheService) {
    ScriptedRtos rtos;
    expectServed(client(), rtos);
    rtos.link().reset();
    client().sendFrame(GET_ALL);
    constexpr auto LOST =
        "Connection reset by peer: Connection reset by peer\n"
        "_handlerRoutine, exception: Error on sending json request throw local tcp socket \n";
    EXPECT_TRUE(service.hasError(LOST));
    client().sendFrame(GET_ALL);
    constexpr auto BROKEN =
        "Broken pipe: Broken pipe\n"
        "_handlerRoutine, exception: Error on sending json request throw local tcp socket \n";
    EXPECT_TRUE(service.hasError(std::string(LOST) + BROKEN));
    EXPECT_TRUE(service.isAlive());
    EXPECT_TRUE(client().connection().isQuiet());
}

TEST_F(RtosLinkTest, GarbageCostsTheReplyAndKeepsTheLink) {
    ScriptedRtos rtos;
    ask(rtos);
    rtos.answer("RTOS v1 ready, longer than the answer to the next request\r\n");
    EXPECT_TRUE(service.hasError(CORRUPTED));
    expectServed(client(), rtos);
    EXPECT_TRUE(service.hasProgress(FULL_LINE));
}

// And not only when the time-out says that no more will come.
TEST_F(RtosLinkTest, AnswerIsTakenAsSoonAsItIsThere) {
    ScriptedRtos rtos;
    const auto asked = std::chrono::steady_clock::now();
    expectServed(client(), rtos);
    EXPECT_LT(std::chrono::steady_clock::now() - asked, ANSWER_TIMEOUT);
}

TEST_F(RtosLinkTest, AnswerOf1024BytesIsRead) {
    ScriptedRtos rtos;
    ask(rtos);
    rtos.answer(std::string(LONGEST_ANSWER_BYTES - FULL.size(), ' ') + std::string(FULL));
    EXPECT_EQ(client().readReply(), FULL_REPLY);
}

TEST_F(RtosLinkTest, AnswerOver1024BytesIsCutAndItsRestTakenForTheNextAnswer) {
    ScriptedRtos rtos;
    ask(rtos);
    rtos.answer("[\"" + std::string(LONGEST_ANSWER_BYTES - 2, 'x') + R"([{"ret_val":7}])");
    EXPECT_TRUE(service.hasError(CORRUPTED));
    ask(rtos);
    EXPECT_EQ(client().readReply(), "{\n\t\"result\" : \"RETICLE_CANT_BE_DELETED\"\n}");
}

TEST_F(RtosLinkTest, AnswerInTwoSegmentsIsReadOnlyUpToTheFirst) {
    ScriptedRtos rtos;
    ask(rtos);
    rtos.answer(FULL.substr(0, 5));
    EXPECT_TRUE(service.hasError(CORRUPTED));
    rtos.answer(FULL.substr(5));
    ask(rtos);
    // The second half answers the second request, and it is no JSON either.
    EXPECT_TRUE(service.hasError(std::string(CORRUPTED) + CORRUPTED));
    expectServed(client(), rtos);
}

TEST_F(RtosLinkTest, AnswerEndsAtAZeroByte) {
    ScriptedRtos rtos;
    ask(rtos);
    rtos.answer(std::string(FULL) + '\0' + "{{{ not json");
    EXPECT_EQ(client().readReply(), FULL_REPLY);
    EXPECT_TRUE(service.hasProgress(FULL_LINE));
}

TEST_F(RtosLinkTest, LateAnswerWithinTheTimeOutIsServed) {
    ScriptedRtos rtos;
    ask(rtos);
    // No reply comes while the RTOS thinks.
    EXPECT_EQ(client().connection().receive(1, ANSWER_TIMEOUT / 2), "");
    rtos.answer(FULL);
    EXPECT_EQ(client().readReply(), FULL_REPLY);
}

}  // namespace
