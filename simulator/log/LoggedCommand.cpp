#include "simulator/log/LoggedCommand.h"

#include <string_view>
#include <utility>

#include "simulator/base/JsonText.h"
#include "simulator/base/NamedFiles.h"
#include "simulator/log/ReplyFiles.h"

namespace sim {

namespace {

constexpr const char* LIST_REQUEST =
    "[\n\t{\n\t\t\"msg_id\" : 76,\n\t\t\"param_get\" : \"\"\n\t}\n]";

std::string activeRequest(int index) {
    return "[\n\t{\n\t\t\"msg_id\" : 77,\n\t\t\"param\" : " + std::to_string(index) + "\n\t}\n]";
}

/// Stands for an answer that is not JSON; the log does not tell which.
constexpr const char* NOT_JSON = "?";

constexpr std::string_view CORRUPTED = "Corrupted json packet was received fromRTOS";
constexpr std::string_view NO_ANSWER = "Error after receiving json from local tcp,socket closed";
constexpr std::string_view CLOSED = "Unexpected received FIN of local tcp connection,socket closed";
constexpr std::string_view NOT_CONNECTED = "Error on attempt to connect to local tcp server ";
constexpr std::string_view NOT_SENT = "Error on sending json request throw local tcp socket ";

Json::Value objectIn(const std::string& text) {
    const std::optional<Json::Value> root = parseLeniently(text);
    return root && root->isObject() ? *root : Json::Value();
}

/// Whether the service takes an entry of the client's "reticles" for a reticle.
bool isReticle(const Json::Value& entry) {
    return entry.isObject() && entry["name"].isString() && entry["data"].isString() &&
           entry["index"].isConvertibleTo(Json::intValue);
}

}  // namespace

LoggedCommand::LoggedCommand(const LogRecord& record)
    : _line(record.line), _text(record.text), _command(objectIn(record.text)) {
    for (const Json::Value& reticle : _command["reticles"]) {
        if (isReticle(reticle)) {
            // As the service takes it: up to a zero byte.
            _newData.emplace(reticle["data"].asCString());
        }
    }
}

void LoggedCommand::take(const LogRecord& record) {
    switch (record.kind) {
        case LogRecord::Kind::RTOS_REQUEST:
            _loggedRequest = record.text;
            break;
        case LogRecord::Kind::RTOS_ANSWER:
            _takeAnswer({.bytes = record.text, .gap = {}});
            break;
        case LogRecord::Kind::RETICLE_FILE:
            _reticlePaths.push_back(record.text);
            break;
        case LogRecord::Kind::REPLY:
            _takeReply(record.text);
            break;
        case LogRecord::Kind::RESET_LINK:
            _isLinkReset = true;
            break;
        case LogRecord::Kind::FAILURE:
            _takeFailure(record.text);
            break;
        case LogRecord::Kind::CLIENT_REQUEST:
            break;
    }
}

void LoggedCommand::_takeAnswer(Delivery answer) {
    Exchange exchange;
    exchange.request = _request();
    if (const std::optional<std::string> newData = newDataNamedBy(exchange.request)) {
        exchange.newData.push_back({*newData, _takeNewData()});
    }
    exchange.answer = std::move(answer);
    _exchanges.push_back(std::move(exchange));
}

void LoggedCommand::_takeReply(const std::string& reply) {
    _outcome = Outcome::REPLY;
    if (_exchanges.empty()) {
        return;
    }
    Exchange& last = _exchanges.back();
    if (const std::optional<std::string> listFile = listFileNamedBy(last.answer.bytes)) {
        last.files = replyFiles(reply, *listFile, _reticlePaths);
    }
}

void LoggedCommand::_takeFailure(const std::string& reason) {
    _outcome = Outcome::FAILURE;
    if (reason == NOT_CONNECTED || reason == NOT_SENT) {
        _outcome = Outcome::UNREACHABLE;
    } else if (reason == CORRUPTED) {
        _takeAnswer({.bytes = NOT_JSON, .gap = {}});
    } else if (reason == CLOSED) {
        _takeAnswer({.bytes = "", .gap = {}, .end = Delivery::End::CLOSE});
    } else if (reason == NO_ANSWER) {
        const auto end = _isLinkReset ? Delivery::End::RESET : Delivery::End::KEEP_OPEN;
        _takeAnswer({.bytes = "", .gap = {}, .end = end});
    }
}

std::string LoggedCommand::_request() {
    if (_loggedRequest) {
        std::string request = *std::move(_loggedRequest);
        _loggedRequest.reset();
        return request;
    }
    const bool isFirst = _exchanges.empty();
    if (isFirst && _command["action"] == "RETICLE_SET_ACTIVE" &&
        _command["index"].isConvertibleTo(Json::intValue)) {
        return activeRequest(_command["index"].asInt());
    }
    return LIST_REQUEST;
}

std::string LoggedCommand::_takeNewData() {
    std::string data;
    if (!_newData.empty()) {
        data = std::move(_newData.front());
        _newData.pop();
    }
    return data;
}

}  // namespace sim
