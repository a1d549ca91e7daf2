#include "client/Request.h"

#include <json/json.h>

#include <string_view>

#include "client/ActionNames.h"
#include "client/Utf8.h"
#include "reticle-client/Errors.h"

namespace reticle {

namespace {

Json::Value action(std::string_view name) {
    Json::Value request(Json::objectValue);
    request["action"] = std::string(name);
    return request;
}

/// `text` as JSON, when a request can carry it: the service reads texts up to the first NUL.
Json::Value carried(const std::string& text, const std::string& what) {
    if (const auto invalid = findInvalidUtf8(text)) {
        throw InvalidText(what + " is not UTF-8 text (byte " + std::to_string(*invalid) +
                          "): convert it to UTF-8");
    }
    if (const auto nul = text.find('\0'); nul != std::string::npos) {
        throw InvalidText(what + " holds a NUL (byte " + std::to_string(nul) +
                          "), which no request can carry: check that it is a text");
    }
    return text;
}

void requireFits(std::size_t bytes) {
    if (bytes >= REQUEST_LIMIT_BYTES) {
        throw RequestTooLarge("the request is too large, the service takes less than " +
                              std::to_string(REQUEST_LIMIT_BYTES) +
                              " bytes of JSON: send smaller data");
    }
}

/// The request that stores one reticle. \param index null for a new one.
Json::Value storeRequest(const Json::Value& index, const NewReticle& reticle) {
    if (reticle.data.empty()) {
        throw InvalidRequest("the data of reticle \"" + reticle.name +
                             "\" is empty: the device would hold it, but no list would show it; "
                             "check where the data comes from");
    }
    // Before anything is copied: no JSON text is shorter than what it carries.
    requireFits(reticle.name.size() + reticle.data.size());
    Json::Value request = action(ADD_OR_UPDATE_ACTION);
    Json::Value& record = request["reticles"].append(Json::objectValue);
    record["name"] = carried(reticle.name, "the name of a reticle");
    record["data"] = carried(reticle.data, "the data of reticle \"" + reticle.name + "\"");
    if (!index.isNull()) {
        record["index"] = index;
    }
    return request;
}

std::string written(const Json::Value& request) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    // Characters stay as they are: escaped ones would take up to six times the room.
    builder["emitUTF8"] = true;
    std::string text = Json::writeString(builder, request);
    requireFits(text.size());
    return text;
}

}  // namespace

std::string listRequest() {
    return written(action(LIST_ACTION));
}

std::string activateRequest(int index) {
    Json::Value request = action(ACTIVATE_ACTION);
    request["index"] = index;
    return written(request);
}

std::string addRequest(const NewReticle& reticle) {
    return written(storeRequest(Json::nullValue, reticle));
}

std::string updateRequest(int index, const NewReticle& reticle) {
    if (index < 0) {
        throw InvalidRequest("index " + std::to_string(index) + " names no reticle: use 0 or more");
    }
    return written(storeRequest(index, reticle));
}

std::string removeRequest(int index) {
    Json::Value request = action(DELETE_ACTION);
    request["indices"].append(index);
    return written(request);
}

}  // namespace reticle
