#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/FrameClient.h"
#include "tests/support/Patience.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundTest.h"
#include "tests/system/Process.h"

namespace {

using exchanges::GET_ALL;
using exchanges::LIST_ANSWER;
using exchanges::LIST_REQUEST;

/// The check that the service manager runs, with less patience.
class StalledReaderHealthCheckTest : public ForegroundTest {
protected:
    static constexpr int SMALL_BUFFER = 4096;
    static constexpr std::size_t MORE_THAN_KERNELS_HOLD = 6'000'000;
    static constexpr std::chrono::seconds CUT_OFF_AFTER{30};

    static std::vector<std::string> check() {
        const std::string path = std::filesystem::path(programs::RETICLECTL).parent_path();
        return {"env", "PATH=" + path + ":/usr/bin:/bin", "PING_TIMEOUT=1",
                programs::SOURCE_DIRECTORY + "/packaging/health-check"};
    }
};

TEST_F(StalledReaderHealthCheckTest, WaitsForClientsThatStall) {
    flash.write("list.json", exchanges::ONE_DOT_LIST);
    flash.write("reticle/dot.svg", std::string(MORE_THAN_KERNELS_HOLD, 'x'));
    FrameClient first(SMALL_BUFFER);
    FrameClient second(SMALL_BUFFER);
    for (FrameClient* stalled : {&first, &second}) {
        stalled->sendFrame(GET_ALL);
        EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
    }
    EXPECT_EQ(first.readBytes(1).size(), 1);
    // Its reply goes on all the same.
    first.connection().closeWriting();
    Process process(check());
    // The three pings: two in vain, the third is answered when both clients have been cut off.
    for (int ping = 0; ping < 3; ++ping) {
        EXPECT_EQ(rtos.exchange(R"([{"param":"none.json","ret_val":0}])"), LIST_REQUEST);
    }
    EXPECT_EQ(process.waitForEnd(2 * CUT_OFF_AFTER + PATIENCE), 0) << process.standardError();
    EXPECT_TRUE(first.connection().seesEnd());
    EXPECT_TRUE(second.connection().seesEnd());
}

TEST_F(StalledReaderHealthCheckTest, GivesAServiceUpThatAnswersNobody) {
    FrameClient idle;
    exchanges::expectServed(idle, rtos);
    rtos.link().closeWriting();
    Process process(check());
    EXPECT_EQ(process.waitForEnd(), 1);
}

}  // namespace
