#include "tests/replay/ClientTexts.h"

#include <json/value.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "simulator/base/JsonText.h"

namespace {

enum MsgId : int { LIST = 76, SET_ACTIVE = 77, ADD = 78, UPDATE = 79, DELETE = 80 };

/// Whether the service goes on after this answer to a change.
bool isAccepted(const sim::Delivery& answer) {
    const std::optional<Json::Value> root = sim::parseLeniently(answer.bytes);
    if (!root || !root->isArray() || root->empty()) {
        return false;
    }
    const Json::Value& last = (*root)[root->size() - 1];
    return last.isObject() && (last["ret_val"].isNull() || last["ret_val"] == 0);
}

/// Puts clients' requests together from the requests of the service, one after the other.
class Deriver {
public:
    void take(const sim::Exchange& exchange) {
        const Json::Value message = sim::parseJson(exchange.request)[0];
        switch (message["msg_id"].asInt()) {
            case SET_ACTIVE:
                _begin("RETICLE_SET_ACTIVE");
                _open["index"] = message["param"];
                break;
            case ADD:
            case UPDATE:
                _continue("RETICLES_ADD_OR_UPDATE");
                _open["reticles"].append(_reticle(message, exchange));
                break;
            case DELETE:
                _continue("RETICLES_DELETE");
                _open["indices"].append(message["param"]);
                break;
            default:
                _continue(_open.isNull() ? "RETICLES_GET_ALL" : _open["action"].asString());
                finish();
                return;
        }
        if (!isAccepted(exchange.answer)) {
            finish();
        }
    }

    void finish() {
        if (!_open.isNull()) {
            _texts.push_back(sim::compactJson(std::exchange(_open, Json::Value())));
        }
    }

    [[nodiscard]] const std::vector<std::string>& texts() const { return _texts; }

private:
    void _begin(const std::string& action) {
        finish();
        _open["action"] = action;
    }

    void _continue(const std::string& action) {
        if (_open.isNull() || _open["action"] != action) {
            _begin(action);
        }
    }

    static Json::Value _reticle(const Json::Value& message, const sim::Exchange& exchange) {
        Json::Value reticle;
        reticle["name"] = message["param2_name"];
        reticle["data"] = exchange.newData.empty() ? "" : exchange.newData.front().text;
        if (message.isMember("param1_index")) {
            reticle["index"] = message["param1_index"];
        }
        return reticle;
    }

    Json::Value _open;  ///< the request whose exchanges are being taken; null between requests
    std::vector<std::string> _texts;
};

}  // namespace

std::vector<std::string> clientTexts(const sim::Session& session) {
    std::vector<std::string> texts;
    if (!session.clientRequests.empty()) {
        std::transform(session.clientRequests.begin(), session.clientRequests.end(),
                       std::back_inserter(texts), [](const auto& request) { return request.text; });
        return texts;
    }
    Deriver deriver;
    for (const sim::Exchange& exchange : session.exchanges) {
        deriver.take(exchange);
    }
    deriver.finish();
    return deriver.texts();
}
