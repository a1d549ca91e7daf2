#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/FrameClient.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundTest.h"

namespace {

using exchanges::DONE;
using exchanges::LIST_REQUEST;

using Names = std::vector<std::string>;

constexpr auto ADD_ONE =
    R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"name":"A","data":"<a/>"}]})";
constexpr auto ADD_THREE = R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[
{"name":"A","data":"<a/>"},{"name":"B","data":"<b/>"},{"name":"C","data":"<c/>"}]})";

constexpr auto ADD_A_FROM_FILE_0 = R"([
	{
		"msg_id" : 78,
		"param2_name" : "A",
		"param3_data" : "a:/new_reticle_data0"
	}
])";

class AddOrUpdateTest : public ForegroundTest {
protected:
    AddOrUpdateTest() {
        flash.write("list.json", exchanges::ONE_DOT_LIST);
        flash.write("reticle/dot.svg", exchanges::DOT);
    }

    // The list request, at which no data file may be left, and the reply after it.
    void expectList(std::string_view reply = exchanges::ONE_DOT_REPLY) {
        EXPECT_EQ(rtos.receiveRequest(), LIST_REQUEST);
        EXPECT_EQ(flash.names(), Names{"list.json"});
        rtos.answer(exchanges::LIST_ANSWER);
        EXPECT_EQ(client.readReply(), reply);
        EXPECT_TRUE(rtos.isQuiet());
    }

    FrameClient client;
};

TEST_F(AddOrUpdateTest, DataWaitInFilesFromTheFirstRequestToTheLastAnswer) {
    const Names allFiles{"list.json", "new_reticle_data0", "new_reticle_data1",
                         "new_reticle_data2"};
    client.sendFrame(R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[
{"name":"Kreuz 1°","data":"<svg>\n\t<!-- 1\u00b0 € -->\r\n</svg>\n"},
{"index":3,"name":"Empty","data":""},
{"index":-5,"name":"Neg","data":"\"quoted\" \\ \u0001"}]})");

    EXPECT_EQ(rtos.receiveRequest(), R"([
	{
		"msg_id" : 78,
		"param2_name" : "Kreuz 1\u00b0",
		"param3_data" : "a:/new_reticle_data0"
	}
])");
    EXPECT_EQ(flash.names(), allFiles);
    EXPECT_EQ(flash.read("new_reticle_data0"),
              "<svg>\n\t<!-- 1\xC2\xB0 \xE2\x82\xAC -->\r\n</svg>\n");
    EXPECT_EQ(flash.read("new_reticle_data1"), "");
    EXPECT_EQ(flash.read("new_reticle_data2"), "\"quoted\" \\ \x01");
    rtos.answer(DONE);

    EXPECT_EQ(rtos.receiveRequest(), R"([
	{
		"msg_id" : 79,
		"param1_index" : 3,
		"param2_name" : "Empty",
		"param3_data" : "a:/new_reticle_data1"
	}
])");
    rtos.answer(DONE);

    EXPECT_EQ(rtos.receiveRequest(), R"([
	{
		"msg_id" : 78,
		"param2_name" : "Neg",
		"param3_data" : "a:/new_reticle_data2"
	}
])");
    EXPECT_EQ(flash.names(), allFiles);
    rtos.answer(DONE);
    expectList();
}

TEST_F(AddOrUpdateTest, TextsEndAtAZeroCharacter) {
    client.sendFrame(R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[
{"name":"A\u0000x","data":"<a/>\u0000x"}]})");
    EXPECT_EQ(rtos.receiveRequest(), ADD_A_FROM_FILE_0);
    EXPECT_EQ(flash.read("new_reticle_data0"), "<a/>");
    rtos.answer(DONE);
    expectList();
}

TEST_F(AddOrUpdateTest, RequestWithoutRecordsRemovesLeftOverFilesToo) {
    client.sendFrame(ADD_ONE);
    EXPECT_EQ(rtos.exchange("garbage"), ADD_A_FROM_FILE_0);
    EXPECT_TRUE(service.hasError("Corrupted json packet was received fromRTOS\n"));
    client.sendFrame(R"({"action":"RETICLES_ADD_OR_UPDATE"})");
    expectList(exchanges::ONE_DOT_REPLY_WITHOUT_RESULT);
}

TEST_F(AddOrUpdateTest, FilesStayWhenTheLinkIsLostAndNumbersGoOn) {
    client.sendFrame(ADD_THREE);
    EXPECT_EQ(rtos.receiveRequest(), ADD_A_FROM_FILE_0);
    rtos.link().reset();
    EXPECT_TRUE(service.hasError("Error after receiving json from local tcp,socket closed\n"));
    client.sendFrame(ADD_ONE);
    EXPECT_TRUE(service.hasError("Error on attempt to connect to local tcp server \n"));
    EXPECT_EQ(flash.names(), (Names{"list.json", "new_reticle_data0", "new_reticle_data1",
                                    "new_reticle_data2", "new_reticle_data3"}));
    EXPECT_EQ(flash.read("new_reticle_data2"), "<c/>");
    EXPECT_EQ(flash.read("new_reticle_data3"), "<a/>");
}

TEST_F(AddOrUpdateTest, LinkFailureInTheListRefreshCostsTheReplyAndLeavesNoFile) {
    client.sendFrame(ADD_ONE);
    EXPECT_EQ(rtos.exchange(DONE), ADD_A_FROM_FILE_0);
    EXPECT_EQ(rtos.exchange("garbage"), LIST_REQUEST);
    EXPECT_TRUE(service.hasError("Corrupted json packet was received fromRTOS\n"));
    EXPECT_EQ(flash.names(), Names{"list.json"});
    exchanges::expectServed(client, rtos);
}

TEST_F(AddOrUpdateTest, DataOfMegabytesReachTheFileWhole) {
    const std::string data(4000000, 'x');
    client.sendFrame(R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"name":"A","data":")" +
                     data + "\"}]}");
    EXPECT_EQ(rtos.receiveRequest(), ADD_A_FROM_FILE_0);
    EXPECT_TRUE(flash.read("new_reticle_data0") == data);
    rtos.answer(DONE);
    expectList();
}

}  // namespace
