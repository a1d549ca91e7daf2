#include <gtest/gtest.h>
#include <sys/resource.h>

#include <string>

#include "tests/support/FrameClient.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundTest.h"

namespace {

using exchanges::expectServed;
using exchanges::GET_ALL;
using exchanges::LIST_ANSWER;
using exchanges::LIST_REQUEST;

constexpr std::size_t LONGEST_BODY_BYTES = 4194303;
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

TEST_F(MemoryShortageTest, EndlessDeviceAsReticleFileIsLeftOut) {
    flash.write("reticle/dot.svg", exchanges::DOT);
    flash.write("list.json", R"([{"reticles":[
{"index":2,"name":"Zeros","data":"../../../dev/zero","userColor":"red"},
{"index":1,"name":"Dot","data":"dot.svg","userColor":"red","isDeletable":1,"isActive":0}]}])");
    leaveOnly(MORE_THAN_A_THREAD_BYTES);
    EXPECT_EQ(replyToList(), exchanges::ONE_DOT_REPLY);
    EXPECT_TRUE(service.hasError("Wrong json key\n"));
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

}  // namespace
