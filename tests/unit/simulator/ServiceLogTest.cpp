#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "simulator/log/ServiceLog.h"
#include "simulator/session/SessionWriter.h"

namespace sim {
namespace {

struct Converted {
    std::string session;  ///< without its head
    std::string remarks;
};

Converted convert(const std::string& text) {
    std::istringstream input(text);
    const ServiceLog log(input);
    std::ostringstream output;
    SessionWriter(output).write(log.session());
    Converted converted{output.str().substr(std::string(SESSION_HEAD).size() + 1), ""};
    for (const std::string& remark : log.remarks()) {
        converted.remarks += remark + '\n';
    }
    return converted;
}

const std::string LIST_REQUEST =
    "rtos receives 45 bytes\n    [\n    \t{\n    \t\t\"msg_id\" : 76,\n    \t\t\"param_get\" : "
    "\"\"\n    \t}\n    ]\n";
const std::string ACTIVE_REQUEST =
    "rtos receives 40 bytes\n    [\n    \t{\n    \t\t\"msg_id\" : 77,\n    \t\t\"param\" : 3\n    "
    "\t}\n    ]\n";

const std::string LIST_LOG =
    "PacketsHandler::_handlerRoutine, json req: {\"action\":\"RETICLES_GET_ALL\"}\n";
const std::string ACTIVATE_LOG =
    "PacketsHandler::_handlerRoutine, json req: {\"action\":\"RETICLE_SET_ACTIVE\",\"index\":3}\n";
const std::string REPLY_LOG = "handleJsReq, response: {\n\t\"result\" : \"\"\n}\n";

const std::string LIST_SENT = "client sends 29 bytes\n    {\"action\":\"RETICLES_GET_ALL\"}\n";
const std::string ACTIVATE_SENT =
    "client sends 41 bytes\n    {\"action\":\"RETICLE_SET_ACTIVE\",\"index\":3}\n";

TEST(ServiceLog, PutsTheRequestsThatAreNotLoggedBack) {
    const Converted converted =
        convert(ACTIVATE_LOG + "send_and_get: recv json: [{}]\nsend_and_get: recv json: []\n" +
                "handleJsReq, response: {\n\t\"result\" : \"OK\",\n\t\"reticles\" : null\n}\n");
    EXPECT_EQ(converted.session, ACTIVATE_SENT + ACTIVE_REQUEST +
                                     "rtos answers 4 bytes\n    [{}]\n" + LIST_REQUEST +
                                     "rtos answers 2 bytes\n    []\n");
    EXPECT_EQ(converted.remarks, "");
}

TEST(ServiceLog, GivesEachChangeTheDataOfItsReticle) {
    const std::string text =
        R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"name":"no data"},{"name":"A","data":"first"},{"name":"B","data":"second"}]})";
    const Converted converted = convert("PacketsHandler::_handlerRoutine, json req: " + text +
                                        R"(
handleJsReq, rtos request: [{"param3_data":"a:/new_reticle_data0"}]
send_and_get: recv json: [{"ret_val":0}]
handleJsReq, rtos request: [{"param3_data":"a:/new_reticle_data1"}]
send_and_get: recv json: [{"ret_val":6}]
)" + REPLY_LOG);
    EXPECT_EQ(converted.session,
              "client sends " + std::to_string(text.size()) + " bytes\n    " + text + R"(
rtos receives 40 bytes
    [{"param3_data":"a:/new_reticle_data0"}]
file exists new_reticle_data0, 5 bytes
    first
rtos answers 15 bytes
    [{"ret_val":0}]
rtos receives 40 bytes
    [{"param3_data":"a:/new_reticle_data1"}]
file exists new_reticle_data1, 6 bytes
    second
rtos answers 15 bytes
    [{"ret_val":6}]
)");
}

TEST(ServiceLog, TellsHowTheLinkFailed) {
    const auto failure = [](const std::string& errors) {
        return convert(LIST_LOG + errors).session.substr((LIST_SENT + LIST_REQUEST).size());
    };
    const std::string noAnswer =
        "_handlerRoutine, exception: Error after receiving json from local tcp,socket closed\n";
    EXPECT_EQ(failure("_handlerRoutine, exception: Corrupted json packet was received fromRTOS\n"),
              "rtos answers 1 bytes\n    ?\n");
    EXPECT_EQ(
        failure("Resource temporarily unavailable: Resource temporarily unavailable\n" + noAnswer),
        "rtos answers nothing\n");
    EXPECT_EQ(failure("Connection reset by peer: Connection reset by peer\n" + noAnswer),
              "rtos resets\n");
    EXPECT_EQ(failure("_handlerRoutine, exception: Unexpected received FIN of local tcp "
                      "connection,socket closed\n"),
              "rtos closes\n");
}

TEST(ServiceLog, KeepsRequestsThatFailBeforeTheDevice) {
    const Converted converted = convert(
        "PacketsHandler::_handlerRoutine, json req: 7\n"
        "_handlerRoutine, exception: in Json::Value::resolveReference(key, end): requires "
        "objectValue\n");
    EXPECT_EQ(converted.session, "client sends 1 bytes\n    7\n");
    EXPECT_EQ(converted.remarks, "");
}

TEST(ServiceLog, SaysWhatItLeavesOut) {
    const Converted converted =
        convert(REPLY_LOG + "send_and_get: recv json: [{}]\n" + ACTIVATE_LOG +
                "send_and_get: recv json: [{}]\n" + LIST_LOG +
                "_handlerRoutine, exception: Error on attempt to connect to local tcp server \n" +
                LIST_LOG + "send_and_get: recv json: []\n" + REPLY_LOG + LIST_LOG);
    EXPECT_EQ(converted.session, LIST_SENT + LIST_REQUEST + "rtos answers 2 bytes\n    []\n");
    EXPECT_EQ(converted.remarks,
              "line 5: left out, the log does not tell how this request ended\n"
              "line 7: left out, this request did not get through to the device\n"
              "line 14: left out, the log does not tell how this request ended\n");
}

TEST(ServiceLog, TakesAnythingForALog) {
    for (const std::string text : {"", "\n", "no log", "{", "[\n]\n", "\xff\r\n"}) {
        EXPECT_EQ(convert(text).session, "");
    }
    EXPECT_EQ(convert(LIST_LOG + "handleJsReq, response: [1]\n").session, LIST_SENT);
}

}  // namespace
}  // namespace sim
