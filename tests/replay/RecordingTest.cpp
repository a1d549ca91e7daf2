#include <gtest/gtest.h>

#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "tests/replay/ServiceRun.h"
#include "tests/support/FlashFiles.h"
#include "tests/system/Process.h"
#include "tests/system/Programs.h"
#include "tests/system/SystemTest.h"

namespace {

using Replies = std::vector<std::optional<std::string>>;
using Options = std::vector<std::string>;

const std::string SESSION = "/tmp/test.session";
const std::string LOG = "/tmp/test.log";

const std::string GET_ALL = R"({"action":"RETICLES_GET_ALL"})";
const std::string ACTIVATE_3 = R"({"action":"RETICLE_SET_ACTIVE","index":3})";

/// All commands, refusals, and requests that never get to the device.
const std::vector<std::string> STORY = {
    GET_ALL,
    ACTIVATE_3,
    R"({"action":"RETICLE_SET_ACTIVE","index":99})",
    R"({"action":"RETICLE_SET_ACTIVE","index":"three"})",
    R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[)"
    R"({"name":"Erste \u00fc","data":"<svg>\r\n<circle fill=\"user_color\"/>\u0007\u00e9\r\n</svg>\n"},)"
    R"({"name":7,"data":"left out"},)"
    R"({"index":7,"name":"Zweite","data":"\"user_color\""}]})",
    "{\n  \"action\": \"RETICLES_ADD_OR_UPDATE\",\n  \"reticles\": []\n}",
    R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"name":"Full","data":"<svg/>"}]})",
    R"({"action":"RETICLES_DELETE","indices":[8,8]})",
    R"({"action":"RETICLES_DELETE","indices":[0]})",
    R"({"action":"RETICLES_DELETE"})",
    R"({"action":12})",
    GET_ALL};

constexpr auto TWO_REFUSALS = R"(rtos-sim session 1
rtos receives 45 bytes
    [
    	{
    		"msg_id" : 76,
    		"param_get" : ""
    	}
    ]
rtos answers
    [{"ret_val":6}]
rtos receives 40 bytes
    [
    	{
    		"msg_id" : 77,
    		"param" : 3
    	}
    ]
rtos answers
    [{"ret_val":5}]
)";

void write(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

/// What was recorded, by the simulator or by the service's log, is served alike once more.
class RecordingTest : public SystemTest {
protected:
    RecordingTest() {
        write(SESSION, "");
        write(LOG, "");
    }

    /// Lets the simulator serve STORY, written into SESSION and LOG. \return the client's replies
    static Replies record(Options options = {}) {
        options.insert(options.end(), {"--record", SESSION, "--max-reticles", "9"});
        ServiceRun run(options);
        Replies replies = run.exchangeAll(STORY);
        EXPECT_TRUE(run.finish());
        write(LOG, run.log());
        return replies;
    }

    static void convertLog() {
        Process program({programs::RTOS_SIM, "--from-log", LOG});
        EXPECT_EQ(program.waitForEnd(), 0) << program.standardError();
        write(SESSION, program.standardOutput());
    }

    /// Serves STORY with the device that SESSION tells of, as on another machine.
    static Replies replay() {
        const FlashFiles fresh;
        Sandbox::renewNetwork();
        ServiceRun run({"--replay", SESSION});
        Replies replies = run.exchangeAll(STORY);
        EXPECT_TRUE(run.finish());
        return replies;
    }

    /// Serves `texts` with the device of SESSION, which must not be content.
    /// \return what it complains of
    static std::string complaintAbout(const std::vector<std::string>& texts) {
        const FlashFiles fresh;
        Sandbox::renewNetwork();
        ServiceRun run({"--replay", SESSION});
        static_cast<void>(run.exchangeAll(texts));
        return run.finish().message();
    }
};

TEST_F(RecordingTest, RecordedSessionGivesTheSameReplies) {
    const Replies replies = record();
    EXPECT_EQ(replay(), replies);
}

TEST_F(RecordingTest, SessionFromTheLogGivesTheSameReplies) {
    const Replies replies = record();
    convertLog();
    EXPECT_EQ(replay(), replies);
}

TEST_F(RecordingTest, FaultsAreRecorded) {
    const Replies replies = record({"--fault", "garbage@2", "--fault", "refuse:42@4", "--fault",
                                    "missing-file@1", "--fault", "delay:20@3"});
    EXPECT_EQ(replay(), replies);
}

TEST_F(RecordingTest, FaultsAreReadBackFromTheLog) {
    const Replies replies = record({"--fault", "garbage@2", "--fault", "refuse:42@4", "--fault",
                                    "missing-file@1", "--fault", "bad-list@3"});
    convertLog();
    EXPECT_EQ(replay(), replies);
}

TEST_F(RecordingTest, LostLinkIsRecorded) {
    const Replies replies = record({"--fault", "close@5"});
    EXPECT_EQ(replay(), replies);
}

TEST_F(RecordingTest, LostLinkIsReadBackFromTheLog) {
    const Replies replies = record({"--fault", "close@5"});
    convertLog();
    EXPECT_EQ(replay(), replies);
}

TEST_F(RecordingTest, DifferentRequestIsNamed) {
    write(SESSION, TWO_REFUSALS);
    EXPECT_EQ(complaintAbout({GET_ALL, R"({"action":"RETICLE_SET_ACTIVE","index":4})"}),
              "rtos-sim: exchange 2 (line 11 of the session): the request differs, first in its "
              "line 4\nexpected: \t\t\"param\" : 3\ngot:      \t\t\"param\" : 4\n");
}

TEST_F(RecordingTest, DifferentNewDataIsNamed) {
    write(SESSION, R"(rtos-sim session 1
rtos receives 90 bytes
    [
    	{
    		"msg_id" : 78,
    		"param2_name" : "A",
    		"param3_data" : "a:/new_reticle_data0"
    	}
    ]
file exists new_reticle_data0, 6 bytes
    <svg/>
rtos answers 15 bytes
    [{"ret_val":6}]
)");
    EXPECT_EQ(complaintAbout({R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[)"
                              R"({"name":"A","data":"<svg>\r"}]})"}),
              "rtos-sim: exchange 1 (line 2 of the session): the file new_reticle_data0 differs, "
              "first in its line 1\nexpected: <svg/>\ngot:      <svg>\\r   (escaped)\n");
}

TEST_F(RecordingTest, MissingRequestIsNamed) {
    write(SESSION, TWO_REFUSALS);
    EXPECT_EQ(complaintAbout({GET_ALL}),
              "rtos-sim: exchange 2 (line 11 of the session): the request does not come\n"
              "[\n\t{\n\t\t\"msg_id\" : 77,\n\t\t\"param\" : 3\n\t}\n]\n");
}

TEST_F(RecordingTest, RequestBeyondTheSessionIsNamed) {
    write(SESSION, TWO_REFUSALS);
    EXPECT_EQ(complaintAbout({GET_ALL, ACTIVATE_3, GET_ALL}),
              "rtos-sim: after all 2 exchanges: a request that is not expected\n"
              "[\n\t{\n\t\t\"msg_id\" : 76,\n\t\t\"param_get\" : \"\"\n\t}\n]\n");
}

}  // namespace
