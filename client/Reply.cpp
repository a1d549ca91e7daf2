#include "reticle-client/Reply.h"

#include <json/json.h>

#include <map>
#include <memory>
#include <utility>

#include "client/JsonSize.h"
#include "reticle-client/Errors.h"

namespace reticle {

namespace {

constexpr const char* SUCCESS = "OK";

/// A list of more reticles than any device holds; parsed, a value takes about a hundred bytes.
constexpr std::size_t VALUES_LIMIT = 1'000'000;

[[noreturn]] void refuseShape(const std::string& problem) {
    throw MalformedReply("the reply is not one of the reticle service (" + problem +
                         "): check that the service and this client are of the same version");
}

Json::Value parseJson(const std::string& text) {
    if (countJsonValues(text) > VALUES_LIMIT) {
        refuseShape("it holds more values than any list");
    }
    Json::CharReaderBuilder builder;
    // The service copies comments of the device's list into its reply. They must be read over, and
    // collecting them takes time quadratic in their number.
    builder["collectComments"] = false;
    builder["failIfExtra"] = true;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value root;
    try {
        if (reader->parse(text.data(), text.data() + text.size(), &root, nullptr)) {
            return root;
        }
    } catch (const Json::Exception&) {
        refuseShape("its JSON is nested too deeply");
    }
    refuseShape("not JSON");
}

const Json::Value& member(const Json::Value& record, const char* key, Json::ValueType type) {
    const Json::Value& value = record[key];
    if (value.type() != type) {
        refuseShape(std::string("a reticle's \"") + key + "\" is missing or of a wrong type");
    }
    return value;
}

Reticle toReticle(const Json::Value& record) {
    if (!record.isObject()) {
        refuseShape("a reticle is not an object");
    }
    Reticle reticle;
    if (const Json::Value& index = record["index"]; index.isInt()) {
        reticle.index = index.asInt();
    }
    reticle.name = member(record, "name", Json::stringValue).asString();
    reticle.data = member(record, "data", Json::stringValue).asString();
    reticle.isDeletable = member(record, "isDeletable", Json::booleanValue).asBool();
    reticle.isActive = member(record, "isActive", Json::booleanValue).asBool();
    return reticle;
}

std::vector<Reticle> toReticles(const Json::Value& list) {
    if (!list.isArray() && !list.isNull()) {
        refuseShape("\"reticles\" is not a list");
    }
    std::vector<Reticle> reticles;
    reticles.reserve(list.size());
    for (const Json::Value& record : list) {
        reticles.push_back(toReticle(record));
    }
    return reticles;
}

}  // namespace

bool Reply::isRefused() const {
    return result && *result != SUCCESS;
}

Reply Reply::parse(std::string json) {
    const Json::Value root = parseJson(json);
    if (!root.isObject()) {
        refuseShape("not an object");
    }
    Reply reply;
    if (root.isMember("result")) {
        if (!root["result"].isString()) {
            refuseShape("\"result\" is not a text");
        }
        reply.result = root["result"].asString();
    }
    if (!reply.isRefused() && !root.isMember("reticles")) {
        refuseShape("a success without \"reticles\"");
    }
    reply.reticles = toReticles(root["reticles"]);
    reply.json = std::move(json);
    return reply;
}

std::string resultMeaning(const std::string& result) {
    static const std::map<std::string, std::string> MEANINGS = {
        {SUCCESS, "done"},
        {"RETICLE_INDEX_NOT_FOUND",
         "the device has no reticle of this index: list the reticles to see which there are"},
        {"RETICLES_COUNT_OUT_OF_BOUNDS",
         "the device holds as many reticles as it can, or has no room for the data: delete one "
         "first"},
        {"RETICLE_CANT_BE_DELETED",
         "factory reticles and the active one stay: check in the list that it is deletable and not "
         "active"},
        {"UNKNOWN_ACTION",
         "the device cannot carry this out: when a reticle is stored, check first that the service "
         "may write to /tmp/FL0/ and that there is room, as the device cannot read data that is "
         "not there; then that both sides of the device are of the same version; the log of its "
         "RTOS side tells more"},
        {"",
         "a code that the service has no name for, or an answer without any: check first the log "
         "of "
         "the device's RTOS side, then that both sides of the device are of the same version"}};
    const auto found = MEANINGS.find(result);
    return found != MEANINGS.end()
               ? found->second
               : "unknown to this client: check that it is as new as the service";
}

}  // namespace reticle
