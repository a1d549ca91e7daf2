#include <gtest/gtest.h>

#include <list>
#include <string>
#include <vector>

#include "tests/support/FrameClient.h"
#include "tests/support/HostileTexts.h"
#include "tests/support/Text.h"
#include "tests/system/Exchanges.h"
#include "tests/system/Programs.h"
#include "tests/system/RestingDaemonTest.h"

namespace {

using exchanges::FULL;

constexpr std::size_t MEGABYTE = 1000000;
constexpr std::size_t SMALLEST_LARGE_BYTES = 65536;
/// The allocator maps a block of the largest body's size by itself, and unmaps it with the body; a
/// little less comes from its arenas.
constexpr std::size_t LARGEST_IN_ARENA_BYTES = 4194200;

/// Resident memory after bodies of every kind, when all who sent them have their replies.
class MemoryReturnTest : public RestingDaemonTest {
protected:
    /// `count` clients send the text at once; the RTOS refuses all that it is asked for.
    void handleAtOnce(const HostileText& hostile, std::size_t count) {
        std::list<FrameClient> clients(count);
        for (FrameClient& client : clients) {
            client.sendFrame(hostile.text);
        }
        if (hostile.firstRequest != HostileText::Request::NONE) {
            for (std::size_t i = 0; i < count; ++i) {
                EXPECT_NE(rtos.exchange(FULL), "");
            }
            for (FrameClient& client : clients) {
                EXPECT_NE(client.readReply(), "");
            }
        }
        leave(clients);
    }

    /// Returns when the service has handled all that they sent.
    static void leave(std::list<FrameClient>& clients) {
        for (FrameClient& client : clients) {
            client.connection().closeWriting();
            EXPECT_TRUE(client.connection().seesEnd());
        }
    }

    void expectGivenBackAfterEach(const std::vector<HostileText>& texts, std::size_t clients) {
        for (const HostileText& hostile : texts) {
            SCOPED_TRACE(std::string(hostile.kind) + ", " + std::to_string(hostile.text.size()) +
                         " bytes, " + std::to_string(clients) + " clients");
            handleAtOnce(hostile, clients);
            expectGivenBack();
        }
    }

    static HostileText manyTinyValues(std::size_t bytes) {
        constexpr std::string_view START = R"({"action":"RETICLES_GET_ALL","x":[0)";
        const std::string values = repeated(",0", (bytes - START.size() - 2) / 2);
        return {"many tiny values", std::string(START) + values + "]}"};
    }
};

TEST_F(MemoryReturnTest, NothingStaysOfBodiesOf64Kilobytes) {
    for (const std::size_t clients : {1U, 8U}) {
        expectGivenBackAfterEach(hostileTexts(SMALLEST_LARGE_BYTES), clients);
        expectGivenBackAfterEach(hostileChanges(SMALLEST_LARGE_BYTES), clients);
    }
}

TEST_F(MemoryReturnTest, NothingStaysOfBodiesOf400Kilobytes) {
    constexpr std::size_t BYTES = 400000;
    expectGivenBackAfterEach(hostileTexts(BYTES), 1);
}

// Bodies that are too small for anything to be given back after them: the readers share what they took.
TEST_F(MemoryReturnTest, LittleStaysOfOrdinaryBodiesOfManyClients) {
    constexpr std::size_t CLIENTS = 50;
    constexpr std::size_t BYTES = 16000;
    const HostileText text = manyTinyValues(BYTES);
    std::list<FrameClient> clients;
    while (clients.size() < CLIENTS) {
        FrameClient& client = clients.emplace_back();
        client.sendFrame(text.text);
        EXPECT_NE(rtos.exchange(FULL), "");
        EXPECT_NE(client.readReply(), "");
    }
    expectGivenBack();
}

TEST_F(MemoryReturnTest, NothingStaysOfRefusedLargeChanges) {
    constexpr std::size_t BYTES = 524288;
    expectGivenBackAfterEach(hostileChanges(BYTES), 1);
}

TEST_F(MemoryReturnTest, EightLargestBodiesAtOnceTakeTheMemoryOfFew) {
    constexpr std::size_t AT_WORK_AT_MOST_BYTES = 500 * MEGABYTE;
    constexpr std::size_t KILOBYTE = 1024;
    handleAtOnce(manyTinyValues(LARGEST_IN_ARENA_BYTES), 8);
    EXPECT_LE(std::stoul(service.info().status("VmHWM")) * KILOBYTE,
              atRest + AT_WORK_AT_MOST_BYTES);
    expectGivenBack();
}

TEST_F(MemoryReturnTest, NothingStaysOfBodiesThatNeverCameToTheirEnd) {
    constexpr std::size_t CLIENTS = 100;
    for (const std::size_t bytes : {SMALLEST_LARGE_BYTES, MEGABYTE, LARGEST_IN_ARENA_BYTES}) {
        SCOPED_TRACE(bytes);
        // One after the other: few connections at once may wait to be accepted.
        std::list<FrameClient> clients;
        while (clients.size() < CLIENTS) {
            clients.emplace_back().sendBytes(
                FrameClient::header(static_cast<std::uint32_t>(bytes)) +
                std::string(bytes - 1, 'x'));
        }
        leave(clients);
        expectGivenBack();
    }
}

}  // namespace
