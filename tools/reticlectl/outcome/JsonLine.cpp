#include "tools/reticlectl/outcome/JsonLine.h"

#include <json/json.h>

namespace reticlectl {

namespace {

const char* nameOf(ExitStatus status) {
    switch (status) {
        case ExitStatus::DONE:
            return "DONE";
        case ExitStatus::REFUSED:
            return "REFUSED";
        case ExitStatus::USAGE:
            return "USAGE";
        case ExitStatus::CANNOT_CONNECT:
            return "CANNOT_CONNECT";
        case ExitStatus::NO_REPLY:
            return "NO_REPLY";
        case ExitStatus::MALFORMED_REPLY:
            return "MALFORMED_REPLY";
        case ExitStatus::INTERRUPTED:
            return "INTERRUPTED";
    }
    return "";
}

}  // namespace

std::string toJsonLine(const Json::Value& document) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    // Microseconds, where a number is milliseconds.
    builder["precisionType"] = "decimal";
    builder["precision"] = 3;
    return Json::writeString(builder, document);
}

Json::Value toJson(const reticle::Reticle& reticle) {
    Json::Value document;
    document["index"] = reticle.index ? Json::Value(*reticle.index) : Json::Value();
    document["name"] = reticle.name;
    document["data"] = reticle.data;
    document["isDeletable"] = reticle.isDeletable;
    document["isActive"] = reticle.isActive;
    return document;
}

Json::Value errorJson(ExitStatus status, const std::string& problem) {
    Json::Value document;
    Json::Value& error = document["error"];
    error["exitStatus"] = static_cast<int>(status);
    error["kind"] = nameOf(status);
    error["message"] = problem;
    return document;
}

}  // namespace reticlectl
