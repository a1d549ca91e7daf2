#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <vector>

#include "tests/support/FrameClient.h"
#include "tests/support/Patience.h"
#include "tests/support/ScriptedRtos.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundService.h"
#include "tests/system/Process.h"
#include "tests/system/SystemTest.h"

namespace {

using exchanges::expectServed;
using exchanges::FULL;
using exchanges::FULL_REPLY;
using exchanges::GET_ALL;
using exchanges::LIST_REQUEST;

constexpr auto CONTROL = "/tmp/fiu";
constexpr auto INTERRUPTED = "Interrupted system call: Interrupted system call\n";

std::string failureOf(const std::string& call, int error) {
    return "enable name=" + call + ",failinfo=" + std::to_string(error) + ",onetime";
}

/// System calls of the service fail as a test says (fiu-run puts a library between the service and
/// the system).
class FailingCallsTest : public SystemTest {
protected:
    static std::vector<std::string> underFaults(const std::string& firstFault = {}) {
        std::vector<std::string> command{"fiu-run", "-x", "-f", CONTROL};
        if (!firstFault.empty()) {
            command.insert(command.end(), {"-c", firstFault});
        }
        command.push_back(programs::RETICLED_FOREGROUND);
        return command;
    }

    // The next call of this kind, of whatever thread, fails; calls that wait already do not.
    static void failNext(const ForegroundService& service, const std::string& call, int error) {
        EXPECT_TRUE(eventually([&] { return service.info().isAsleep(); }));
        Process control({"fiu-ctrl", "-f", CONTROL, "-c", failureOf(call, error),
                         std::to_string(service.pid())});
        ASSERT_EQ(control.waitForEnd(), 0) << control.standardError();
    }

    static void interruptNext(const ForegroundService& service, const std::string& call) {
        failNext(service, call, EINTR);
    }

    std::string replyToList() {
        FrameClient client;
        client.sendFrame(GET_ALL);
        EXPECT_EQ(rtos.exchange(exchanges::LIST_ANSWER), LIST_REQUEST);
        return client.readReply();
    }

    void writeOneDot() const {
        flash.write("list.json", exchanges::ONE_DOT_LIST);
        flash.write("reticle/dot.svg", exchanges::DOT);
    }

    ScriptedRtos rtos;
};

TEST_F(FailingCallsTest, InterruptedReceiveFromAClientIsDoneAgain) {
    ForegroundService service(underFaults());
    service.waitUntilListening();
    FrameClient client;
    expectServed(client, rtos);
    // The header is waited for already; the body is next.
    interruptNext(service, "posix/io/net/recv");
    expectServed(client, rtos);
    EXPECT_EQ(service.errors(), "json value: 6\njson value: 6\n");
}

TEST_F(FailingCallsTest, ReceiveFromAClientThatFailsEndsItsConnection) {
    ForegroundService service(underFaults());
    service.waitUntilListening();
    FrameClient client;
    expectServed(client, rtos);
    failNext(service, "posix/io/net/recv", ENOMEM);
    client.sendFrame(GET_ALL);
    EXPECT_TRUE(client.connection().seesEnd());
    EXPECT_EQ(service.errors(), "json value: 6\nCannot allocate memory: Cannot allocate memory\n");
    FrameClient other;
    expectServed(other, rtos);
}

TEST_F(FailingCallsTest, InterruptedReceiveFromTheRtosIsDoneAgain) {
    ForegroundService service(underFaults());
    service.waitUntilListening();
    FrameClient client;
    client.sendFrame(R"({"action":"RETICLES_DELETE","indices":[1,2]})");
    EXPECT_NE(rtos.receiveRequest(), "");
    // The answer to the first request is waited for already; that to the second is next.
    interruptNext(service, "posix/io/net/recv");
    rtos.answer(exchanges::DONE);
    EXPECT_NE(rtos.exchange(FULL), "");
    EXPECT_EQ(client.readReply(), FULL_REPLY);
    EXPECT_EQ(service.errors(), "json value: 0\njson value: 6\n");
}

TEST_F(FailingCallsTest, InterruptedSendToAClientIsDoneAgain) {
    ForegroundService service(underFaults());
    service.waitUntilListening();
    FrameClient client;
    client.sendFrame(GET_ALL);
    EXPECT_EQ(rtos.receiveRequest(), LIST_REQUEST);
    interruptNext(service, "posix/io/net/send");
    rtos.answer(FULL);
    EXPECT_EQ(client.readReply(), FULL_REPLY);
    EXPECT_EQ(service.errors(), "json value: 6\n");
}

TEST_F(FailingCallsTest, InterruptedSendToTheRtosCostsTheReplyAndKeepsTheLink) {
    ForegroundService service(underFaults());
    service.waitUntilListening();
    FrameClient client;
    expectServed(client, rtos);
    interruptNext(service, "posix/io/net/send");
    client.sendFrame(GET_ALL);
    EXPECT_TRUE(service.hasError(std::string(INTERRUPTED) +
                                 "_handlerRoutine, exception: Error on sending json request throw "
                                 "local tcp socket \n"));
    expectServed(client, rtos);
}

TEST_F(FailingCallsTest, InterruptedAcceptIsDoneAgain) {
    ForegroundService service(underFaults());
    service.waitUntilListening();
    interruptNext(service, "posix/io/net/accept");
    FrameClient first;
    expectServed(first, rtos);
    EXPECT_TRUE(service.hasError(INTERRUPTED));
    FrameClient second;
    expectServed(second, rtos);
}

TEST_F(FailingCallsTest, StorageThatCannotBeReadGivesANullList) {
    writeOneDot();
    ForegroundService service(
        underFaults("enable name=posix/io/rw/read,failinfo=" + std::to_string(EIO)));
    service.waitUntilListening();
    EXPECT_EQ(replyToList(), "{\n\t\"result\" : \"OK\",\n\t\"reticles\" : null\n}");
}

TEST_F(FailingCallsTest, ShortReadsOfTheStorageLoseNothing) {
    writeOneDot();
    ForegroundService service(underFaults("enable name=posix/io/rw/read/reduce"));
    service.waitUntilListening();
    EXPECT_EQ(replyToList(), exchanges::ONE_DOT_REPLY);
}

TEST_F(FailingCallsTest, StorageForWhichThereIsNoMemoryCostsTheReply) {
    writeOneDot();
    for (const char* call : {"posix/io/oc/open", "posix/io/rw/read"}) {
        ForegroundService service(underFaults());
        service.waitUntilListening();
        FrameClient client;
        client.sendFrame(GET_ALL);
        EXPECT_EQ(rtos.receiveRequest(), LIST_REQUEST);
        failNext(service, call, ENOMEM);
        rtos.answer(exchanges::LIST_ANSWER);
        EXPECT_TRUE(service.hasError("_handlerRoutine, exception: std::bad_alloc\n")) << call;
        EXPECT_TRUE(client.connection().isQuiet());
        rtos.link().close();
    }
}

}  // namespace
