#include <gtest/gtest.h>

#include <csignal>
#include <string>

#include "tests/support/FrameClient.h"
#include "tests/support/ScriptedRtos.h"
#include "tests/system/Daemon.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundService.h"
#include "tests/system/SystemTest.h"

namespace {

constexpr int ENDED_BY_ABORT = 128 + SIGABRT;

using UnknownActionTest = SystemTest;

// By design: nothing guards the call of a handler that does not exist.
TEST_F(UnknownActionTest, EndsTheDaemonAtOnceWithoutAReply) {
    ScriptedRtos rtos;
    Daemon service;
    service.waitUntilListening();
    FrameClient client;
    client.sendFrame(R"({"action":"RETICLES_COUNT"})");
    EXPECT_EQ(service.waitForEnd(), ENDED_BY_ABORT);
    EXPECT_EQ(client.readBytes(1), "");
    EXPECT_FALSE(rtos.isCalled());
}

using UnusableRequestTest = SystemTest;

TEST_F(UnusableRequestTest, IsReportedAndTheServiceGoesOn) {
    ScriptedRtos rtos;
    ForegroundService service;
    service.waitUntilListening();
    FrameClient client;
    client.sendFrame(R"({"index":1})");
    client.sendFrame(R"({"action":5})");
    constexpr auto NO_TEXT =
        "_handlerRoutine, exception: in Json::Value::asCString(): requires stringValue\n";
    EXPECT_TRUE(service.hasError(std::string(NO_TEXT) + NO_TEXT));
    client.sendFrame("[1]");
    EXPECT_TRUE(service.hasError("requires objectValue\n"));
    client.sendFrame(R"({"action":"RETICLE_SET_ACTIVE","index":"one"})");
    EXPECT_TRUE(service.hasError("_handlerRoutine, exception: Value is not convertible to Int.\n"));
    client.sendFrame(R"({"action":"RETICLE_SET_ACTIVE","index":3000000000})");
    EXPECT_TRUE(service.hasError("out of Int range\n"));
    EXPECT_FALSE(rtos.isCalled());
    exchanges::expectServed(client, rtos);
}

}  // namespace
