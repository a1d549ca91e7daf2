#include <gtest/gtest.h>
#include <sys/resource.h>

#include <string>
#include <string_view>
#include <system_error>

#include "tests/support/FrameClient.h"
#include "tests/support/Patience.h"
#include "tests/support/Text.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundTest.h"

namespace {

using exchanges::expectServed;
using exchanges::GET_ALL;
using exchanges::LIST_ANSWER;
using exchanges::LIST_REQUEST;

constexpr std::size_t LONGEST_BODY_BYTES = 4194303;
constexpr rlim_t STEP_BYTES = 1500000;
/// Smaller than what a change's own list takes beside the parsed request.
constexpr rlim_t SMALL_STEP_BYTES = 200000;
constexpr rlim_t LESS_THAN_A_BODY_BYTES = 2000000;
constexpr rlim_t MORE_THAN_A_THREAD_BYTES = 64000000;

/// The service runs into its limit of memory. It counts what may be written, thread stacks
/// included, and not what is merely mapped.
class MemoryShortageTest : public ForegroundTest {
protected:
    MemoryShortageTest() { expectServed(client, rtos); }

    void leaveOnly(rlim_t bytes) const {
        constexpr rlim_t KILOBYTE = 1024;
        const rlim_t inUse = std::stoul(service.info().status("VmData")) * KILOBYTE;
        service.info().setSoftLimit(RLIMIT_DATA, inUse + bytes);
    }

    void leaveEverything() const { service.info().setSoftLimit(RLIMIT_DATA, RLIM_INFINITY); }

    std::string listAfterShortage() {
        leaveEverything();
        flash.write("list.json", exchanges::ONE_DOT_LIST);
        flash.write("reticle/dot.svg", exchanges::DOT);
        return replyToList();
    }

    std::string replyToList() {
        client.sendFrame(GET_ALL);
        EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
        return client.readReply();
    }

    /// Sends all, unless the service closes the connection before, for lack of memory for the body.
    static void sendUntilClosed(FrameClient& sender, const std::string& request) {
        try {
            sender.sendFrame(request);
        } catch (const std::system_error& failure) {
            EXPECT_NE(failure.code(), std::errc::timed_out);
        }
    }

    /// However much memory there is: in the least of it the request cannot be read, in the most the
    /// RTOS gets its first message.
    void expectExceptionOrMessage(const std::string& request, std::string_view message) {
        std::string rtosRequest;
        for (rlim_t bytes = STEP_BYTES; rtosRequest.empty(); bytes += SMALL_STEP_BYTES) {
            FrameClient changing;
            expectServed(changing, rtos);
            const std::string errorsBefore = service.errors();
            leaveOnly(bytes);
            sendUntilClosed(changing, request);
            EXPECT_TRUE(eventually(
                [&] { return service.errors().size() > errorsBefore.size() || !rtos.isQuiet(); }));
            leaveEverything();
            if (!rtos.isQuiet()) {
                rtosRequest = rtos.exchange(exchanges::FULL);
            }
        }
        EXPECT_NE(rtosRequest.find(message), std::string::npos) << rtosRequest;
        EXPECT_EQ(service.errors().find("Wrong json key"), std::string::npos);
        EXPECT_EQ(service.errors().find("Error: json str"), std::string::npos);
    }

    FrameClient client;
};

TEST_F(MemoryShortageTest, BodyThatThereIsNoMemoryForCostsItsClientTheConnection) {
    FrameClient large;
    expectServed(large, rtos);
    leaveOnly(LESS_THAN_A_BODY_BYTES);
    large.sendBytes(FrameClient::header(LONGEST_BODY_BYTES));
    EXPECT_TRUE(large.connection().seesEnd());
    EXPECT_TRUE(service.hasError("_clientRoutine, exception: std::bad_alloc\n"));
    expectServed(client, rtos);
}

TEST_F(MemoryShortageTest, ClientForWhoseThreadThereIsNoMemoryLosesItsConnection) {
    leaveOnly(LESS_THAN_A_BODY_BYTES);
    FrameClient refused;
    EXPECT_TRUE(refused.connection().seesEnd());
    EXPECT_TRUE(service.hasError("_serverRoutine, exception: Resource temporarily unavailable\n"));
    expectServed(client, rtos);
    leaveEverything();
    FrameClient after;
    expectServed(after, rtos);
}

TEST_F(MemoryShortageTest, EndlessDeviceAsReticleFileCostsTheReply) {
    flash.write(
        "list.json",
        R"([{"reticles":[{"name":"Zeros","data":"../../../dev/zero","userColor":"red"}]}])");
    leaveOnly(MORE_THAN_A_THREAD_BYTES);
    client.sendFrame(GET_ALL);
    EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
    EXPECT_TRUE(service.hasError("_handlerRoutine, exception: std::bad_alloc\n"));
    EXPECT_TRUE(client.connection().isQuiet());
    EXPECT_EQ(listAfterShortage(), exchanges::ONE_DOT_REPLY);
}

TEST_F(MemoryShortageTest, EndlessDeviceAsListFileCostsTheReply) {
    leaveOnly(MORE_THAN_A_THREAD_BYTES);
    client.sendFrame(GET_ALL);
    EXPECT_EQ(rtos.exchange(R"([{"ret_val":0,"param":"../../dev/zero"}])"), LIST_REQUEST);
    EXPECT_TRUE(service.hasError("_handlerRoutine, exception: std::bad_alloc\n"));
    EXPECT_TRUE(client.connection().isQuiet());
    EXPECT_EQ(listAfterShortage(), exchanges::ONE_DOT_REPLY);
}

// However much memory there is: in the least of it not even the file can be read, in the most all can be done.
TEST_F(MemoryShortageTest, ListIsWholeOrNotSent) {
    constexpr std::size_t RETICLE_BYTES = 3000000;
    const std::string text(RETICLE_BYTES, 'x');
    flash.write("list.json", exchanges::ONE_DOT_LIST);
    flash.write("reticle/dot.svg", text);
    std::string whole(exchanges::ONE_DOT_REPLY);
    constexpr std::string_view DOT_IN_REPLY = R"(<circle fill=\"red\"/>)";
    whole.replace(whole.find(DOT_IN_REPLY), DOT_IN_REPLY.size(), text);
    int sent = 0;
    int failed = 0;
    for (rlim_t bytes = STEP_BYTES; sent < 2; bytes += STEP_BYTES) {
        leaveOnly(bytes);
        client.sendFrame(GET_ALL);
        EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
        // The next request reaches the RTOS when the worker is done with this one.
        client.sendFrame(GET_ALL);
        EXPECT_EQ(rtos.receiveRequest(), LIST_REQUEST);
        leaveEverything();
        rtos.answer(exchanges::FULL);
        std::string reply = client.readReply();
        if (reply != exchanges::FULL_REPLY) {
            EXPECT_TRUE(reply == whole) << reply.size() << " bytes, " << bytes << " free";
            reply = client.readReply();
            ++sent;
        } else {
            ++failed;
        }
        EXPECT_EQ(reply, exchanges::FULL_REPLY);
    }
    EXPECT_GT(failed, 2);
    EXPECT_TRUE(service.hasError("_handlerRoutine, exception: ", static_cast<std::size_t>(failed)));
    EXPECT_EQ(service.errors().find("Wrong json key"), std::string::npos);
}

TEST_F(MemoryShortageTest, DeletionIsNeverTakenForOneOfNothing) {
    expectExceptionOrMessage(
        R"({"action":"RETICLES_DELETE","indices":[1)" + repeated(",1", 50000) + "]}",
        R"("msg_id" : 80)");
}

TEST_F(MemoryShortageTest, AdditionIsNeverTakenForOneOfNothing) {
    const std::string record = R"({"name":"R","data":")" + std::string(2000, 'd') + "\"}";
    expectExceptionOrMessage(R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[)" + record +
                                 repeated("," + record, 1900) + "]}",
                             R"("msg_id" : 78)");
}

}  // namespace
