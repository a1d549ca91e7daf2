#include "tests/sweep/Story.h"

#include <algorithm>
#include <array>
#include <exception>
#include <memory>
#include <sstream>

#include "tests/support/FrameClient.h"
#include "tests/support/Text.h"

namespace {

using Clock = std::chrono::steady_clock;

/// The RTOS may take 5 s for its answer; the rest is for a busy machine.
constexpr std::chrono::seconds LONGEST_WAIT{15};

constexpr auto SHORT_LIST = "list.json";
constexpr auto LIST_WITH_MESH = "list_with_mesh.json";

// What the reply has of each reticle:
constexpr auto DOT = R"(
		{
			"data" : "<circle fill=\"red\"/>",
			"index" : 1,
			"isActive" : true,
			"isDeletable" : false,
			"name" : "Dot"
		})";
constexpr auto CROSS = R"(
		{
			"data" : "<path stroke=\"lime\"/>",
			"index" : 2,
			"isActive" : false,
			"isDeletable" : true,
			"name" : "Kreuzma\u00df"
		})";
/// Long enough for a reply that is sent in two parts.
const std::string LONG_DATA = "<mesh/>" + repeated("<line/>", 12000);
const std::string MESH = R"(
		{
			"data" : ")" +
                         LONG_DATA +
                         R"(",
			"index" : 3,
			"isActive" : false,
			"isDeletable" : true,
			"name" : "Mesh"
		})";

std::string replyWith(const std::string& reticles) {
    return "{\n\t\"result\" : \"OK\",\n\t\"reticles\" : \n\t[" + reticles + "\n\t]\n}";
}

const std::string REPLY = replyWith(std::string(DOT) + "," + CROSS);
const std::string LONG_REPLY = replyWith(DOT + ("," + MESH));
const std::array REPLIES_LESS_A_RETICLE{replyWith(DOT), replyWith(CROSS), replyWith(MESH)};
constexpr auto REPLY_WITHOUT_LIST = "{\n\t\"result\" : \"OK\",\n\t\"reticles\" : null\n}";

// What the RTOS gets; the data file stands behind its request.
constexpr auto LIST = "[\n\t{\n\t\t\"msg_id\" : 76,\n\t\t\"param_get\" : \"\"\n\t}\n]";
constexpr auto ACTIVATE = "[\n\t{\n\t\t\"msg_id\" : 77,\n\t\t\"param\" : 2\n\t}\n]";
constexpr auto ADD_RING =
    "[\n\t{\n\t\t\"msg_id\" : 78,\n\t\t\"param2_name\" : \"Ring\",\n"
    "\t\t\"param3_data\" : \"a:/new_reticle_data\"\n\t}\n]<ellipse/>";
const std::string ADD_MESH =
    "[\n\t{\n\t\t\"msg_id\" : 78,\n\t\t\"param2_name\" : \"Mesh\",\n"
    "\t\t\"param3_data\" : \"a:/new_reticle_data\"\n\t}\n]" +
    LONG_DATA;
constexpr auto UPDATE_RING =
    "[\n\t{\n\t\t\"msg_id\" : 79,\n\t\t\"param1_index\" : 3,\n\t\t\"param2_name\" : \"Ring\",\n"
    "\t\t\"param3_data\" : \"a:/new_reticle_data\"\n\t}\n]<rect/>";
constexpr auto DELETE_RING = "[\n\t{\n\t\t\"msg_id\" : 80,\n\t\t\"param\" : 3\n\t}\n]";
constexpr auto DELETE_MESH = "[\n\t{\n\t\t\"msg_id\" : 80,\n\t\t\"param\" : 4\n\t}\n]";

struct Step {
    std::string name;
    std::string request;
    bool hasMesh;
    std::vector<std::string> exchanges;  ///< what the RTOS gets
    bool isNewClients = false;           ///< the client before has left
};

const std::array STEPS{
    Step{"list", R"({"action":"RETICLES_GET_ALL"})", false, {LIST}},
    Step{"activate", R"({"action":"RETICLE_SET_ACTIVE","index":2})", false, {ACTIVATE, LIST}},
    Step{"add",
         R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"name":"Ring","data":"<ellipse/>"},)"
         R"({"name":"Mesh","data":")" +
             LONG_DATA + R"("}]})",
         true,
         {ADD_RING, ADD_MESH, LIST}},
    Step{
        "update",
        R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"index":3,"name":"Ring","data":"<rect/>"}]})",
        true,
        {UPDATE_RING, LIST}},
    Step{"delete",
         R"({"action":"RETICLES_DELETE","indices":[3,4]})",
         false,
         {DELETE_RING, DELETE_MESH, LIST}},
    Step{"list of the next client", R"({"action":"RETICLES_GET_ALL"})", false, {LIST}, true},
};

/// Log lines after which a request gets no reply.
constexpr std::array FAILURES{
    "_handlerRoutine, exception: ",     "_clientRoutine, exception: ",
    "responseThread, exception: ",      "Error: received packet isn't json",
    "Failed to retrieve packet length", "Error during send response for socket: "};

bool tellsFailure(const std::string& lines) {
    return std::any_of(FAILURES.begin(), FAILURES.end(), [&](const char* failure) {
        return lines.find(failure) != std::string::npos;
    });
}

/// Whether there is a line that is not written for every answer.
bool hasErrorLine(const std::string& lines) {
    std::istringstream stream(lines);
    for (std::string line; std::getline(stream, line);) {
        if (!line.starts_with("json value: ")) {
            return true;
        }
    }
    return false;
}

/// What came of one request.
struct Outcome {
    std::string reply{};    ///< empty for none
    std::string problem{};  ///< neither a reply nor a known reason for none
};

class Player {
public:
    Player(SweptService& service, Device& device) : _service(service), _device(device) {}

    story::Result play() {
        static_cast<void>(_device.takeRequests());
        for (const Step& step : STEPS) {
            if (step.isNewClients) {
                _client.reset();
            }
            _play(step);
        }
        return _result;
    }

private:
    void _play(const Step& step) {
        _device.nameList(step.hasMesh ? LIST_WITH_MESH : SHORT_LIST);
        const std::size_t logged = _service.errors().size();
        const Outcome outcome = _request(step, logged);
        if (!outcome.problem.empty()) {
            _deviate(step, outcome.problem);
        } else if (outcome.reply.empty()) {
            _waitUntilSettled();
            _leaveLostConnection();
            _judgeLoss(step, logged);
        } else {
            _judgeReply(step, outcome.reply);
        }
    }

    Outcome _request(const Step& step, std::size_t logged) {
        try {
            if (!_client) {
                _client = std::make_unique<FrameClient>();
            }
            _client->sendFrame(step.request);
            return _waitForEnd(logged);
        } catch (const std::exception& error) {
            return {};
        }
    }

    Outcome _waitForEnd(std::size_t logged) {
        const auto deadline = Clock::now() + LONGEST_WAIT;
        while (Clock::now() < deadline) {
            // Asked first: what it says is followed by nothing.
            const bool isOver =
                !_service.isAlive() || tellsFailure(_service.errors().substr(logged));
            if (!_client->connection().isQuiet()) {
                return _readReply();
            }
            if (isOver) {
                return {};
            }
            static_cast<void>(eventually([&] { return !_client->connection().isQuiet(); },
                                         std::chrono::milliseconds(4)));
        }
        return {.problem = "nothing for too long"};
    }

    Outcome _readReply() {
        try {
            return {.reply = _client->readReply(LONGEST_WAIT)};
        } catch (const std::exception& error) {
            const std::string what = error.what();
            return {.problem = what == "a reply without the sync sequence" ? what : ""};
        }
    }

    /// A request may still be in work when its client has lost its connection.
    void _waitUntilSettled() {
        static_cast<void>(
            eventually([this] { return !_service.isAlive() || _isSettled(); }, LONGEST_WAIT));
    }

    /// Whether all threads wait, and for nothing that the sweep is about to do.
    bool _isSettled() {
        const long calls = _service.gate().settledCalls();
        const long answers = _device.answers();
        return calls >= 0 && answers >= 0 && _service.info().isAsleep() &&
               calls == _service.gate().settledCalls() && answers == _device.answers();
    }

    void _leaveLostConnection() {
        if (_client && !_client->connection().isQuiet()) {
            _client.reset();
        }
    }

    void _judgeReply(const Step& step, const std::string& reply) {
        ++_result.served;
        if (reply == REPLY_WITHOUT_LIST) {
            _deviate(step, "no list");
        } else if (std::count(REPLIES_LESS_A_RETICLE.begin(), REPLIES_LESS_A_RETICLE.end(), reply) >
                   0) {
            _deviate(step, "a reticle left out");
        } else if (reply != (step.hasMesh ? LONG_REPLY : REPLY)) {
            _deviate(step, "wrong reply: " + reply);
        }
        const std::vector<std::string> exchanges = _device.takeRequests();
        if (exchanges == step.exchanges) {
            return;
        }
        const bool isSameWithoutData =
            std::equal(exchanges.begin(), exchanges.end(), step.exchanges.begin(),
                       step.exchanges.end(), [](const std::string& seen, const std::string& right) {
                           return right.starts_with(seen) && seen.find("\n]") != std::string::npos;
                       });
        _deviate(step, isSameWithoutData ? "no data file" : "wrong exchanges");
    }

    void _judgeLoss(const Step& step, std::size_t logged) {
        ++_result.lost;
        if (!eventually([&] { return hasErrorLine(_service.errors().substr(logged)); },
                        std::chrono::milliseconds(500)) &&
            _service.isAlive()) {
            _deviate(step, "no reply and no line");
        }
        const std::vector<std::string> exchanges = _device.takeRequests();
        // The last one may be cut short.
        if (exchanges.size() > step.exchanges.size() ||
            !std::equal(exchanges.begin(), exchanges.end(), step.exchanges.begin(),
                        [](const std::string& seen, const std::string& right) {
                            return right.starts_with(seen);
                        })) {
            _deviate(step, "wrong exchanges before the failure");
        }
    }

    void _deviate(const Step& step, const std::string& how) {
        _result.deviations.push_back(how);
        if (how.find(':') != std::string::npos || how.starts_with("wrong")) {
            _result.deviations.back() += " (" + step.name + ")";
        }
    }

    SweptService& _service;
    Device& _device;
    std::unique_ptr<FrameClient> _client;
    story::Result _result;
};

}  // namespace

void story::prepare(const FlashFiles& flash) {
    flash.write(SHORT_LIST, R"([{"reticles":[
{"index":1,"name":"Dot","data":"dot.svg","userColor":"red","isDeletable":0,"isActive":1},
{"index":2,"name":"Kreuzmaß","data":"cross.svg","userColor":"lime","isDeletable":1,"isActive":0}]}])");
    flash.write(LIST_WITH_MESH, R"([{"reticles":[
{"index":1,"name":"Dot","data":"dot.svg","userColor":"red","isDeletable":0,"isActive":1},
{"index":3,"name":"Mesh","data":"mesh.svg","userColor":"red","isDeletable":1,"isActive":0}]}])");
    flash.write("reticle/dot.svg", R"(<circle fill="user_color"/>)");
    flash.write("reticle/cross.svg", R"(<path stroke="user_color"/>)");
    flash.write("reticle/mesh.svg", LONG_DATA);
}

story::Result story::play(SweptService& service, Device& device) {
    return Player(service, device).play();
}
