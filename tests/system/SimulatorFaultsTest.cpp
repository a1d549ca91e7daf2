#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>

#include "tests/system/ForegroundService.h"
#include "tests/system/Reticlectl.h"
#include "tests/system/Simulator.h"
#include "tests/system/SystemTest.h"

namespace {

constexpr auto LOST =
    "_handlerRoutine, exception: Error after receiving json from local tcp,socket closed\n";
constexpr auto DEAD =
    "_handlerRoutine, exception: Error on attempt to connect to local tcp server \n";
constexpr auto CORRUPTED =
    "_handlerRoutine, exception: Corrupted json packet was received fromRTOS\n";
constexpr auto NULL_LIST = "{\n\t\"result\" : \"OK\",\n\t\"reticles\" : null\n}\n";

/// Each fault of the simulator does to the service what its description says.
class SimulatorFaultsTest : public SystemTest {
protected:
    SimulatorFaultsTest() { startService(); }

    void startDevice(const std::string& fault) { simulator.emplace(Options{"--fault", fault}); }

    void startService() {
        service.reset();
        service.emplace();
        service->waitUntilListening();
    }

    static void expectList() {
        const Reticlectl call = Reticlectl::run({"list"});
        EXPECT_EQ(call.status, Reticlectl::DONE);
        EXPECT_EQ(call.table(), R"(INDEX  ACTIVE  NAME          DELETABLE  COLOUR
    0  *       Duplex        no         black
    1          Mil-Dot       no         red
    2          MOA Grid      no         #00c853
    3          BDC 7.62 mm   no         #ffb000
    4          Circle-Dot    no         red
    5          German No. 4  no         black
    6          Mil Tree      no         #00c853
    7          Chevron       yes        red
)");
    }

    // The client gets no reply, and the service says why.
    void expectNoReply(const std::string& error, std::size_t times = 1) const {
        EXPECT_EQ(Reticlectl::run({"--timeout", "0.3", "list"}).status, Reticlectl::NO_REPLY);
        EXPECT_TRUE(service->hasError(error, times));
    }

    // No reply any more, until the service is restarted.
    void expectLostLink() {
        expectNoReply(DEAD);
        EXPECT_TRUE(simulator->isAlive());
        startService();
        expectList();
    }

    static void expectNullList() {
        const Reticlectl call = Reticlectl::run({"--json", "list"});
        EXPECT_EQ(call.status, Reticlectl::DONE);
        EXPECT_EQ(call.output, NULL_LIST);
    }

    using Options = std::vector<std::string>;

    std::optional<ForegroundService> service;
    std::optional<Simulator> simulator;
};

TEST_F(SimulatorFaultsTest, RefuseGivesTheCodesName) {
    startDevice("refuse:6@1");
    const Reticlectl call = Reticlectl::run({"activate", "1"});
    EXPECT_EQ(call.status, Reticlectl::REFUSED);
    EXPECT_NE(call.error.find("RETICLES_COUNT_OUT_OF_BOUNDS"), std::string::npos);
    // It was not carried out: the first reticle is still the active one.
    expectList();
}

TEST_F(SimulatorFaultsTest, RefuseWithACodeWithoutNameGivesAnEmptyResult) {
    startDevice("refuse:99@1");
    const Reticlectl call = Reticlectl::run({"--json", "list"});
    EXPECT_EQ(call.status, Reticlectl::REFUSED);
    EXPECT_EQ(call.output, "{\n\t\"result\" : \"\"\n}\n");
}

TEST_F(SimulatorFaultsTest, RefusedListAfterAChangeIsNull) {
    startDevice("refuse:8@2");
    const Reticlectl call = Reticlectl::run({"--json", "activate", "1"});
    EXPECT_EQ(call.status, Reticlectl::DONE);
    EXPECT_EQ(call.output, NULL_LIST);
}

TEST_F(SimulatorFaultsTest, NoParamGivesANullList) {
    startDevice("no-param@1");
    expectNullList();
    expectList();
}

TEST_F(SimulatorFaultsTest, BadListGivesANullList) {
    startDevice("bad-list@1");
    expectNullList();
    EXPECT_TRUE(service->hasError("Error: json str is wrong, can't be deserialized\n"));
    expectList();
}

TEST_F(SimulatorFaultsTest, EmptyListGivesANullList) {
    startDevice("empty-list@1");
    expectNullList();
    expectList();
}

TEST_F(SimulatorFaultsTest, MissingFileLeavesTheFirstReticleOut) {
    startDevice("missing-file@1");
    const Reticlectl call = Reticlectl::run({"list"});
    EXPECT_EQ(call.status, Reticlectl::DONE);
    EXPECT_EQ(call.table(), R"(INDEX  ACTIVE  NAME          DELETABLE  COLOUR
    1          Mil-Dot       no         red
    2          MOA Grid      no         #00c853
    3          BDC 7.62 mm   no         #ffb000
    4          Circle-Dot    no         red
    5          German No. 4  no         black
    6          Mil Tree      no         #00c853
    7          Chevron       yes        red
)");
    expectList();
}

TEST_F(SimulatorFaultsTest, GarbageCostsOneReply) {
    startDevice("garbage@1");
    expectNoReply(CORRUPTED);
    expectList();
}

// Once the rest of an answer has been taken for the next one, each answer comes one request late.
TEST_F(SimulatorFaultsTest, LongAnswerShiftsTheLaterOnes) {
    startDevice("long@1");
    expectNoReply(CORRUPTED);
    expectNoReply(CORRUPTED, 2);
    expectList();
}

TEST_F(SimulatorFaultsTest, SplitAnswerShiftsTheLaterOnes) {
    startDevice("split:100@1");
    expectNoReply(CORRUPTED);
    expectNoReply(CORRUPTED, 2);
    expectList();
}

TEST_F(SimulatorFaultsTest, ShortDelayOnlyDelaysTheReply) {
    startDevice("delay:500@1");
    const auto start = std::chrono::steady_clock::now();
    expectList();
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500));
    expectList();
}

TEST_F(SimulatorFaultsTest, LongDelayLosesTheLink) {
    startDevice("delay:8000@1");
    expectNoReply(LOST);
    expectLostLink();
}

TEST_F(SimulatorFaultsTest, SilenceLosesTheLink) {
    startDevice("silent@1");
    expectNoReply(LOST);
    expectLostLink();
}

TEST_F(SimulatorFaultsTest, CloseLosesTheLink) {
    startDevice("close@1");
    expectNoReply(
        "_handlerRoutine, exception: Unexpected received FIN of local tcp connection,socket "
        "closed\n");
    expectLostLink();
}

TEST_F(SimulatorFaultsTest, ResetLosesTheLink) {
    startDevice("reset@1");
    expectNoReply(LOST);
    expectLostLink();
}

}  // namespace
