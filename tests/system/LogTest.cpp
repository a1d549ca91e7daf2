#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <list>
#include <map>
#include <string>
#include <string_view>

#include "tests/support/FrameClient.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundTest.h"

namespace {

using exchanges::DONE;
using exchanges::FULL;
using exchanges::FULL_REPLY;
using exchanges::GET_ALL;
using exchanges::LIST_ANSWER;
using exchanges::LIST_REQUEST;

/// What each command writes, line by line: operators and their tools read these texts.
class LogTest : public ForegroundTest {
protected:
    LogTest() {
        flash.write("list.json", exchanges::ONE_DOT_LIST);
        flash.write("reticle/dot.svg", exchanges::DOT);
    }

    FrameClient client;
};

TEST_F(LogTest, ListIsLogged) {
    client.sendFrame(GET_ALL);
    EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
    EXPECT_EQ(client.readReply(), exchanges::ONE_DOT_REPLY);
    EXPECT_EQ(service.progress(), R"(total cnt = 32
json is true, length = 29
PacketsHandler::_handlerRoutine, json req: {"action":"RETICLES_GET_ALL"}
send_and_get: recv json: [{"param":"list.json","ret_val":0}]
handleJsReq: rtos response: [{"param":"list.json","ret_val":0}]
_getReticleData: reticle file path: /tmp/FL0/reticle/dot.svg
handleJsReq, response: {
	"result" : "OK",
	"reticles" : 
	[
		{
			"data" : "<circle fill=\"red\"/>",
			"index" : 1,
			"isActive" : false,
			"isDeletable" : true,
			"name" : "Dot"
		}
	]
}
responseThread: msg to send = {
	"result" : "OK",
	"reticles" : 
	[
		{
			"data" : "<circle fill=\"red\"/>",
			"index" : 1,
			"isActive" : false,
			"isDeletable" : true,
			"name" : "Dot"
		}
	]
}
)");
    EXPECT_EQ(service.errors(), "json value: 0\n");
}

TEST_F(LogTest, RefusedListIsLogged) {
    client.sendFrame(GET_ALL);
    EXPECT_EQ(rtos.exchange(FULL), LIST_REQUEST);
    EXPECT_EQ(client.readReply(), FULL_REPLY);
    EXPECT_EQ(service.progress(), R"(total cnt = 32
json is true, length = 29
PacketsHandler::_handlerRoutine, json req: {"action":"RETICLES_GET_ALL"}
send_and_get: recv json: [{"ret_val":6}]
handleJsReq: rtos response: [{"ret_val":6}]
handleJsReq, response: {
	"result" : "RETICLES_COUNT_OUT_OF_BOUNDS"
}
responseThread: msg to send = {
	"result" : "RETICLES_COUNT_OUT_OF_BOUNDS"
}
)");
    EXPECT_EQ(service.errors(), "json value: 6\n");
}

TEST_F(LogTest, ActivationIsLogged) {
    flash.write("list.json", "[{}]");
    client.sendFrame(R"({"action":"RETICLE_SET_ACTIVE","index":1})");
    EXPECT_NE(rtos.exchange(DONE), "");
    EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
    EXPECT_NE(client.readReply(), "");
    EXPECT_EQ(service.progress(), R"(total cnt = 32
json is true, length = 41
PacketsHandler::_handlerRoutine, json req: {"action":"RETICLE_SET_ACTIVE","index":1}
send_and_get: recv json: [{"ret_val":0}]
send_and_get: recv json: [{"param":"list.json","ret_val":0}]
handleJsReq, response: {
	"result" : "OK",
	"reticles" : null
}
responseThread: msg to send = {
	"result" : "OK",
	"reticles" : null
}
)");
    EXPECT_EQ(service.errors(), "json value: 0\n");
}

TEST_F(LogTest, AdditionIsLogged) {
    flash.write("list.json", "[{}]");
    client.sendFrame(
        R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"name":"A","data":"<a/>"}]})");
    EXPECT_NE(rtos.exchange(DONE), "");
    EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
    EXPECT_NE(client.readReply(), "");
    EXPECT_EQ(service.progress(), R"(total cnt = 32
json is true, length = 75
PacketsHandler::_handlerRoutine, json req: {"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"name":"A","data":"<a/>"}]}
buildmsg: {"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"name":"A","data":"<a/>"}]}
buildindices is empty 
handleJsReq, rtos request: [
	{
		"msg_id" : 78,
		"param2_name" : "A",
		"param3_data" : "a:/new_reticle_data0"
	}
]
send_and_get: recv json: [{"ret_val":0}]
send_and_get: recv json: [{"param":"list.json","ret_val":0}]
handleJsReq, response: {
	"result" : "OK",
	"reticles" : null
}
responseThread: msg to send = {
	"result" : "OK",
	"reticles" : null
}
)");
    EXPECT_EQ(service.errors(), "json value: 0\n");
}

TEST_F(LogTest, DeletionIsLogged) {
    client.sendFrame(R"({"action":"RETICLES_DELETE","indices":[2,5]})");
    EXPECT_NE(rtos.exchange(DONE), "");
    EXPECT_NE(rtos.exchange(R"([{"ret_val":7}])"), "");
    EXPECT_NE(client.readReply(), "");
    EXPECT_EQ(service.progress(), R"(total cnt = 32
json is true, length = 44
PacketsHandler::_handlerRoutine, json req: {"action":"RETICLES_DELETE","indices":[2,5]}
buildmsg: {"action":"RETICLES_DELETE","indices":[2,5]}
handleJsReq, rtos request: [
	{
		"msg_id" : 80,
		"param" : 2
	}
]
send_and_get: recv json: [{"ret_val":0}]
handleJsReq, rtos request: [
	{
		"msg_id" : 80,
		"param" : 5
	}
]
send_and_get: recv json: [{"ret_val":7}]
handleJsReq, response: {
	"result" : "RETICLE_CANT_BE_DELETED"
}
responseThread: msg to send = {
	"result" : "RETICLE_CANT_BE_DELETED"
}
)");
    EXPECT_EQ(service.errors(), "json value: 0\njson value: 7\n");
}

TEST_F(LogTest, DeletionOfNothingIsLogged) {
    flash.write("list.json", "[{}]");
    client.sendFrame(R"({"action":"RETICLES_DELETE"})");
    EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
    EXPECT_EQ(client.readReply(), "{\n\t\"reticles\" : null\n}");
    EXPECT_EQ(service.progress(), R"(total cnt = 32
json is true, length = 28
PacketsHandler::_handlerRoutine, json req: {"action":"RETICLES_DELETE"}
buildmsg: {"action":"RETICLES_DELETE"}
buildindices is empty 
send_and_get: recv json: [{"param":"list.json","ret_val":0}]
handleJsReq, response: {
	"reticles" : null
}
responseThread: msg to send = {
	"reticles" : null
}
)");
    EXPECT_EQ(service.errors(), "");
}

/// A service that was told to be brief.
class BriefLogTest : public SystemTest {
protected:
    BriefLogTest() { service.waitUntilListening(); }

    ScriptedRtos rtos;
    ForegroundService service{{programs::RETICLED_FOREGROUND, "--log-bytes", "20"}};
};

TEST_F(BriefLogTest, EachJsonTextIsCutAndTheClientsAndTheRtossAreWhole) {
    FrameClient client;
    flash.write("list.json", exchanges::ONE_DOT_LIST);
    flash.write("reticle/dot.svg", exchanges::DOT);
    client.sendFrame(
        R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"name":"A","data":"<a/>"}]})");
    EXPECT_EQ(rtos.exchange(DONE), R"([
	{
		"msg_id" : 78,
		"param2_name" : "A",
		"param3_data" : "a:/new_reticle_data0"
	}
])");
    EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
    EXPECT_EQ(client.readReply(), exchanges::ONE_DOT_REPLY);
    EXPECT_EQ(service.progress(), R"(total cnt = 32
json is true, length = 75
PacketsHandler::_handlerRoutine, json req: {"action":"RETICLES_ ... (75 bytes)
buildmsg: {"action":"RETICLES_ ... (75 bytes)
buildindices is empty 
handleJsReq, rtos request: [
	{
		"msg_id" : 78 ... (90 bytes)
send_and_get: recv json: [{"ret_val":0}]
send_and_get: recv json: [{"param":"list.json ... (35 bytes)
_getReticleData: reticle file path: /tmp/FL0/reticle/dot.svg
handleJsReq, response: {
	"result" : "OK",
 ... (170 bytes)
responseThread: msg to send = {
	"result" : "OK",
 ... (170 bytes)
)");
    EXPECT_EQ(service.errors(), "json value: 0\n");
}

TEST_F(BriefLogTest, ListAndDeleteAreCutToo) {
    FrameClient client;
    client.sendFrame(GET_ALL);
    EXPECT_EQ(rtos.exchange(R"([{"ret_val":6,"param":""}])"), LIST_REQUEST);
    EXPECT_EQ(client.readReply(), FULL_REPLY);
    client.sendFrame(R"({"action":"RETICLES_DELETE","indices":[7]})");
    EXPECT_NE(rtos.exchange(FULL), "");
    EXPECT_EQ(client.readReply(), FULL_REPLY);
    EXPECT_TRUE(service.hasProgress(
        "handleJsReq: rtos response: [{\"ret_val\":6,\"param ... (26 bytes)\n"));
    EXPECT_TRUE(service.hasProgress("buildmsg: {\"action\":\"RETICLES_ ... (42 bytes)\n"));
}

using LogLinesTest = ForegroundTest;

// Everything the service may write while clients send list requests that are refused, frames that
// are not JSON and bytes that are no frame.
constexpr std::array<std::string_view, 11> KNOWN_LINES{
    "total cnt = 32\n",
    "json is true, length = 29\n",
    "json is true, length = 8\n",
    "PacketsHandler::_handlerRoutine, json req: {\"action\":\"RETICLES_GET_ALL\"}\n",
    "send_and_get: recv json: [{\"ret_val\":6}]\n",
    "handleJsReq: rtos response: [{\"ret_val\":6}]\n",
    "handleJsReq, response: {\n\t\"result\" : \"RETICLES_COUNT_OUT_OF_BOUNDS\"\n}\n",
    "responseThread: msg to send = {\n\t\"result\" : \"RETICLES_COUNT_OUT_OF_BOUNDS\"\n}\n",
    "Failed to retrieve packet length\n",
    "Error: received packet isn't json\n",
    "json value: 6\n"};

// Takes `text` apart into known lines; what follows "?" could not be recognised.
std::map<std::string, int> countKnownLines(std::string_view text) {
    std::map<std::string, int> counts;
    while (!text.empty()) {
        const auto* line = std::find_if(KNOWN_LINES.begin(), KNOWN_LINES.end(),
                                        [&](const auto& known) { return text.starts_with(known); });
        if (line == KNOWN_LINES.end()) {
            ++counts["? " + std::string(text.substr(0, 200))];
            break;
        }
        ++counts[std::string(*line)];
        text.remove_prefix(line->size());
    }
    return counts;
}

/// A pipe that keeps what is written at a time apart.
class PacketPipe {
public:
    PacketPipe() {
        std::array<int, 2> ends{};
        // Inherited by the service.
        const int result = pipe2(ends.data(), O_DIRECT);
        _reading = FileDescriptor(result < 0 ? result : ends[0], "pipe2");
        _writing = FileDescriptor(ends[1], "pipe2");
    }

    /// What the next write has written; "" when there is none.
    [[nodiscard]] std::string read() const {
        pollfd readable{_reading.get(), POLLIN, 0};
        std::string bytes(PIPE_BUF, '\0');
        const bool isThere = poll(&readable, 1, std::chrono::milliseconds(PATIENCE).count()) == 1;
        const ssize_t count = isThere ? ::read(_reading.get(), bytes.data(), bytes.size()) : 0;
        bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return bytes;
    }

    [[nodiscard]] std::string writingEnd() const { return std::to_string(_writing.get()); }

private:
    FileDescriptor _reading;
    FileDescriptor _writing;
};

using LogWritesTest = SystemTest;

// Lines of other programs in the same file or journal must not come in between.
TEST_F(LogWritesTest, EachErrorLineIsOneWrite) {
    const PacketPipe errors;
    ForegroundService service(
        {"bash", "-c", R"(exec "$0" 2>&"$1")", programs::RETICLED_FOREGROUND, errors.writingEnd()});
    service.waitUntilListening();
    FrameClient client;
    client.sendFrame(GET_ALL);
    EXPECT_EQ(errors.read(), "Connection refused: Connection refused\n");
    EXPECT_EQ(errors.read(),
              "_handlerRoutine, exception: Error on attempt to connect to local tcp server \n");
}

TEST_F(LogLinesTest, LinesOfManyThreadsDoNotMix) {
    constexpr int CLIENTS = 12;
    constexpr int ROUNDS = 20;
    constexpr int BAD_ONES = 20;
    // Per client and round: headers that are refused, bodies that are not JSON, one good request.
    std::string batch;
    for (int i = 0; i < BAD_ONES; ++i) {
        batch += std::string(36, 'x') + FrameClient::header(8) + "not json";
    }
    batch += FrameClient::header(29) + std::string(GET_ALL);

    std::list<FrameClient> clients(CLIENTS);
    for (int round = 0; round < ROUNDS; ++round) {
        for (FrameClient& client : clients) {
            client.sendBytes(batch);
        }
        for (int i = 0; i < CLIENTS; ++i) {
            EXPECT_EQ(rtos.exchange(FULL), LIST_REQUEST);
        }
        for (FrameClient& client : clients) {
            EXPECT_EQ(client.readReply(), FULL_REPLY);
        }
    }

    constexpr int REQUESTS = CLIENTS * ROUNDS;
    const std::map<std::string, int> progress{
        {"total cnt = 32\n", REQUESTS * (BAD_ONES + 1)},
        {"json is true, length = 29\n", REQUESTS},
        {"json is true, length = 8\n", REQUESTS * BAD_ONES},
        {"PacketsHandler::_handlerRoutine, json req: {\"action\":\"RETICLES_GET_ALL\"}\n",
         REQUESTS},
        {"send_and_get: recv json: [{\"ret_val\":6}]\n", REQUESTS},
        {"handleJsReq: rtos response: [{\"ret_val\":6}]\n", REQUESTS},
        {"handleJsReq, response: {\n\t\"result\" : \"RETICLES_COUNT_OUT_OF_BOUNDS\"\n}\n",
         REQUESTS},
        {"responseThread: msg to send = {\n\t\"result\" : \"RETICLES_COUNT_OUT_OF_BOUNDS\"\n}\n",
         REQUESTS}};
    const std::map<std::string, int> errors{
        {"Failed to retrieve packet length\n", REQUESTS * BAD_ONES},
        {"Error: received packet isn't json\n", REQUESTS * BAD_ONES},
        {"json value: 6\n", REQUESTS}};
    EXPECT_EQ(countKnownLines(service.progress()), progress);
    EXPECT_EQ(countKnownLines(service.errors()), errors);
}

}  // namespace
