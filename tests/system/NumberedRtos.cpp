#include "tests/system/NumberedRtos.h"

#include <json/reader.h>
#include <sys/socket.h>

#include <array>
#include <cstdlib>

#include "tests/system/Exchanges.h"

namespace {

constexpr int LIST_MESSAGE = 76;

/// \throws Json::Exception when `text` is no array of one message.
Json::Value messageIn(const std::string& text) {
    Json::Value request;
    Json::Reader().parse(text, request);
    return request[0];
}

int numberIn(const Json::Value& message) {
    for (const char* key : {"param", "param1_index"}) {
        if (message.isMember(key)) {
            return message[key].asInt();
        }
    }
    const std::string name = message["param2_name"].asString();
    return std::atoi(name.substr(name.rfind(' ') + 1).c_str());
}

}  // namespace

NumberedRtos::NumberedRtos(const FlashFiles& flash) : _flash(flash), _thread([this] { _serve(); }) {
    _flash.write("reticle/dot.svg", exchanges::DOT);
}

std::string NumberedRtos::replyTo(int number) {
    return R"({
	"result" : "OK",
	"reticles" : 
	[
		{
			"data" : "<circle fill=\"red\"/>",
			"index" : )" +
           std::to_string(number) + R"(,
			"isActive" : false,
			"isDeletable" : true,
			"name" : "Dot"
		}
	]
})";
}

void NumberedRtos::_serve() {
    for (std::string request = _receiveRequest(); !request.empty(); request = _receiveRequest()) {
        const Json::Value message = messageIn(request);
        if (message["msg_id"].asInt() != LIST_MESSAGE) {
            _handle(message);
        }
        _link.answer(exchanges::LIST_ANSWER);
    }
}

void NumberedRtos::_handle(const Json::Value& message) const {
    _flash.write("list.json",
                 R"([{"reticles":[{"index":)" + std::to_string(numberIn(message)) +
                     R"(,"name":"Dot","data":"dot.svg","userColor":"red","isDeletable":1,)"
                     R"("isActive":0}]}])");
}

// In large pieces, which ScriptedRtos, made for steps, does not do. The service sends one request
// and waits for its answer, so a piece never holds two.
std::string NumberedRtos::_receiveRequest() {
    constexpr std::size_t PIECE_BYTES = 4096;
    std::array<char, PIECE_BYTES> piece{};
    std::string request;
    while (!request.ends_with("\n]")) {
        const ssize_t count = recv(_link.link().descriptor(), piece.data(), piece.size(), 0);
        if (count <= 0) {
            return {};
        }
        request.append(piece.data(), static_cast<std::size_t>(count));
    }
    return request;
}
