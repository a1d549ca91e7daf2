#include "bench/ReticleWork.h"

#include <json/reader.h>
#include <json/writer.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "bench/common/readFile.h"

namespace reticled::bench {
namespace {

constexpr std::string_view PLACEHOLDER = "\"user_color\"";
constexpr auto STORAGE = "/tmp/FL0/";
constexpr auto RTOS_STORAGE = "a:/";

Json::Value parse(std::string_view text) {
    // The reader that the service has to use, for a like comparison.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    Json::Reader reader;
#pragma GCC diagnostic pop
    Json::Value value;
    if (!reader.parse(text.data(), text.data() + text.size(), value, false)) {
        throw std::runtime_error("not JSON");
    }
    return value;
}

std::string putColour(std::string_view text, const std::string& colour) {
    std::string result;
    result.reserve(text.size());
    for (;;) {
        const void* found =
            memmem(text.data(), text.size(), PLACEHOLDER.data(), PLACEHOLDER.size());
        if (found == nullptr) {
            return result.append(text);
        }
        const auto before = static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
        result.append(text, 0, before).append(1, '"').append(colour).append(1, '"');
        text.remove_prefix(before + PLACEHOLDER.size());
    }
}

Json::Value makeMessage(int id, const Json::Value& parameter) {
    Json::Value message;
    message["msg_id"] = id;
    message["param"] = parameter;
    return message;
}

}  // namespace

std::string ReticleWork::libraryText(const Json::Value& value) {
    static const std::unique_ptr<Json::StreamWriter> writer(
        Json::StreamWriterBuilder().newStreamWriter());
    std::ostringstream text;
    writer->write(value, &text);
    return std::move(text).str();
}

ReticleWork::ReticleWork(int requestParses, Writer write)
    : _requestParses(requestParses), _write(write) {}

std::shared_ptr<const std::string> ReticleWork::reply(const std::string& request) {
    Json::Value command = parse(request);
    for (int parses = 1; parses < _requestParses; ++parses) {
        command = parse(request);
    }
    const std::string action = command["action"].asString();
    if (action == "RETICLE_SET_ACTIVE") {
        _exchange(makeMessage(77, command["index"]));
    } else if (action == "RETICLES_DELETE") {
        for (const Json::Value& index : command["indices"]) {
            _exchange(makeMessage(80, index));
        }
    } else if (action == "RETICLES_ADD_OR_UPDATE") {
        _addReticles(command["reticles"]);
    }
    Json::Value listRequest;
    listRequest["msg_id"] = 76;
    listRequest["param_get"] = "";
    Json::Value response;
    response["reticles"] = _readReticles(_exchange(listRequest)["param"].asString());
    response["result"] = "OK";
    return std::make_shared<const std::string>(_write(response));
}

Json::Value ReticleWork::_readReticles(const std::string& listName) {
    Json::Value list = parse(readFile(STORAGE + listName, _file));
    Json::Value reticles(Json::arrayValue);
    for (Json::Value& entry : list[0]["reticles"]) {
        reticles.append(_readReticle(entry));
    }
    return reticles;
}

Json::Value ReticleWork::_readReticle(Json::Value& entry) {
    Json::Value record;
    record["index"] = std::move(entry["index"]);
    record["name"] = std::move(entry["name"]);
    record["data"] =
        putColour(readFile(std::string(STORAGE) + "reticle/" + entry["data"].asString(), _file),
                  entry["userColor"].asString());
    record["isDeletable"] = entry["isDeletable"].asInt() != 0;
    record["isActive"] = entry["isActive"].asInt() != 0;
    return record;
}

void ReticleWork::_addReticles(const Json::Value& records) {
    std::vector<Json::Value> messages;
    for (const Json::Value& record : records) {
        const std::string name = "new_reticle_data" + std::to_string(messages.size());
        std::ofstream(STORAGE + name) << record["data"].asString();
        Json::Value& message = messages.emplace_back();
        message["msg_id"] = 78;
        message["param2_name"] = record["name"];
        message["param3_data"] = RTOS_STORAGE + name;
    }
    for (const Json::Value& message : messages) {
        _exchange(message);
    }
    for (std::size_t i = 0; i < messages.size(); ++i) {
        const std::string path = STORAGE + ("new_reticle_data" + std::to_string(i));
        static_cast<void>(std::remove(path.c_str()));
    }
}

Json::Value ReticleWork::_exchange(const Json::Value& message) {
    Json::Value request(Json::arrayValue);
    request.append(message);
    Json::Value answer = parse(_rtos.exchange(_write(request)));
    if (answer[0]["ret_val"].asInt() != 0) {
        throw std::runtime_error("refused by the RTOS");
    }
    return std::move(answer[0]);
}

}  // namespace reticled::bench
