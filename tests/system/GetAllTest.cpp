#include <gtest/gtest.h>

#include "tests/support/FrameClient.h"
#include "tests/system/DaemonTest.h"
#include "tests/system/Exchanges.h"

namespace {

using exchanges::GET_ALL;
using exchanges::LIST_REQUEST;

class GetAllTest : public DaemonTest {
protected:
    FrameClient client;
};

TEST_F(GetAllTest, ListFileAndReticleFilesBecomeTheReply) {
    flash.write("list.json", R"([{"reticles":[
{"index":0,"name":"Duplex °","data":"duplex.svg","userColor":"#ff0000","isDeletable":0,"isActive":1},
{"index":7,"name":"Dot","data":"dot.svg","userColor":"lime","isDeletable":1,"isActive":0}
]}])");
    flash.write("reticle/duplex.svg",
                "<svg>\n<path stroke=\"user_color\"/>\n<path stroke=\"user_color\"/>\n</svg>\n");
    flash.write("reticle/dot.svg", "<circle fill='user_color'/><!-- \xC2\xB0 \"USER_COLOR\" -->");
    client.sendFrame(GET_ALL);
    EXPECT_EQ(rtos.exchange(R"([{"msg_id":76,"ret_val":0,"param":"list.json"}])"), LIST_REQUEST);
    EXPECT_EQ(client.readReply(), R"({
	"result" : "OK",
	"reticles" : 
	[
		{
			"data" : "<svg>\n<path stroke=\"#ff0000\"/>\n<path stroke=\"#ff0000\"/>\n</svg>\n",
			"index" : 0,
			"isActive" : true,
			"isDeletable" : false,
			"name" : "Duplex \u00b0"
		},
		{
			"data" : "<circle fill='user_color'/><!-- \u00b0 \"USER_COLOR\" -->",
			"index" : 7,
			"isActive" : false,
			"isDeletable" : true,
			"name" : "Dot"
		}
	]
})");
    EXPECT_TRUE(rtos.isQuiet());
}

TEST_F(GetAllTest, RefusalGivesTheResultAlone) {
    exchanges::expectServed(client, rtos);
}

TEST_F(GetAllTest, ListThatCannotBeReadIsNull) {
    client.sendFrame(GET_ALL);
    EXPECT_EQ(rtos.exchange(R"([{"ret_val":0,"param":"nowhere.json"}])"), LIST_REQUEST);
    EXPECT_EQ(client.readReply(), "{\n\t\"result\" : \"OK\",\n\t\"reticles\" : null\n}");
}

TEST_F(GetAllTest, FurtherMembersOfTheRequestAreIgnored) {
    client.sendFrame(R"({"index":[1],"action":"RETICLES_GET_ALL","param_get":"x","msg_id":80})");
    EXPECT_EQ(rtos.exchange(exchanges::FULL), LIST_REQUEST);
    EXPECT_EQ(client.readReply(), exchanges::FULL_REPLY);
}

TEST_F(GetAllTest, ListIsReadAnewForEveryRequest) {
    flash.write("reticle/dot.svg", exchanges::DOT);
    flash.write("list.json", "[{}]");
    client.sendFrame(GET_ALL);
    EXPECT_EQ(rtos.exchange(exchanges::LIST_ANSWER), LIST_REQUEST);
    EXPECT_EQ(client.readReply(), "{\n\t\"result\" : \"OK\",\n\t\"reticles\" : null\n}");
    flash.write("list.json", exchanges::ONE_DOT_LIST);
    client.sendFrame(GET_ALL);
    EXPECT_EQ(rtos.exchange(exchanges::LIST_ANSWER), LIST_REQUEST);
    EXPECT_EQ(client.readReply(), exchanges::ONE_DOT_REPLY);
}

}  // namespace
