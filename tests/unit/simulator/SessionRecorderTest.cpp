#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>

#include "simulator/session/SessionRecorder.h"
#include "tests/unit/simulator/TemporaryRoot.h"

namespace sim {
namespace {

constexpr const char* ADD =
    R"([{"msg_id":78,"param2_name":"A","param3_data":"a:/new_reticle_data0"}])";
constexpr const char* LIST = R"([{"msg_id":76,"param_get":""}])";
constexpr const char* LISTED = R"([{"ret_val":0,"param":"list.json"}])";

class SessionRecorderTest : public testing::Test {
protected:
    SessionRecorderTest() { std::filesystem::create_directory(_root.path() / "reticle"); }

    /// What one exchange adds to the session.
    std::string record(const std::string& request, const Delivery& answer) {
        _session.str("");
        _recorder.record({1, {}, Received{1, request}});
        _recorder.record({2, {}, Answered{1, request, answer}});
        return _session.str();
    }

    test::TemporaryRoot _root;
    std::ostringstream _session;
    SessionRecorder _recorder{_root.path(), _session};
};

TEST_F(SessionRecorderTest, BeginsWithTheHead) {
    EXPECT_EQ(_session.str(), "rtos-sim session 1\n");
}

TEST_F(SessionRecorderTest, RecordsNewDataAndHowTheAnswerTravels) {
    _root.write("new_reticle_data0", "<a/>");
    Delivery answer;
    answer.bytes = "[{}]";
    answer.delay = std::chrono::milliseconds(7);
    answer.end = Delivery::End::CLOSE;
    EXPECT_EQ(record(ADD, answer), "rtos receives " + std::to_string(std::string(ADD).size()) +
                                       " bytes\n    " + ADD +
                                       "\nfile exists new_reticle_data0, 4 bytes\n    <a/>\n"
                                       "rtos waits 7 ms\nrtos answers 4 bytes\n    [{}]\n"
                                       "rtos closes\n");
}

TEST_F(SessionRecorderTest, RecordsFilesWhenTheyAreNewOrChanged) {
    const std::string head = std::string("rtos receives 30 bytes\n    ") + LIST + "\n";
    const std::string tail = std::string("rtos answers 35 bytes\n    ") + LISTED + "\n";
    Delivery answer;
    answer.bytes = LISTED;
    EXPECT_EQ(record(LIST, answer), head + tail);
    _root.write("list.json", R"([{"reticles":[{"data":"a"},{"data":"none"},{"data":"../b"}]}])");
    _root.write("reticle/a", "A");
    _root.write("b", "not below reticle/");
    EXPECT_EQ(record(LIST, answer),
              head + "file reticle/a, 1 bytes\n    A\nfile list.json, 61 bytes\n    " +
                  _root.read("list.json") + "\n" + tail);
    EXPECT_EQ(record(LIST, answer), head + tail);
    _root.write("reticle/a", "B");
    EXPECT_EQ(record(LIST, answer), head + "file reticle/a, 1 bytes\n    B\n" + tail);
}

}  // namespace
}  // namespace sim
