#include "simulator/events/EventJson.h"

#include <variant>

#include "simulator/base/JsonText.h"
#include "simulator/base/NamedFiles.h"
#include "simulator/events/EventTime.h"
#include "simulator/events/ShownText.h"

namespace sim {

namespace {

Json::Value number(std::size_t value) {
    return static_cast<Json::UInt64>(value);
}

void addExchange(Json::Value& json, const char* kind, std::size_t exchange,
                 std::string_view request) {
    json["kind"] = kind;
    json["exchange"] = number(exchange);
    if (const char* const message = messageOf(request)) {
        json["message"] = message;
    }
}

void add(Json::Value& json, const Received& event) {
    addExchange(json, "received", event.exchange, event.request);
    json["request"] = shownText(event.request);
}

void add(Json::Value& json, const Answered& event) {
    const Delivery& delivery = event.delivery;
    addExchange(json, delivery.faults.empty() ? "answered" : "spoiled", event.exchange,
                event.request);
    json["answer"] = shownText(delivery.bytes);
    json["ms"] = static_cast<Json::Int64>(event.time.count());
    if (delivery.retVal) {
        json["ret_val"] = *delivery.retVal;
    }
    if (!delivery.reason.empty()) {
        json["reason"] = shownText(delivery.reason);
    }
    if (!delivery.faults.empty()) {
        json["faults"] = wordsJson(delivery.faults);
    }
}

void add(Json::Value& json, const FileChange& event) {
    json["kind"] = event.bytes ? "written" : "removed";
    json["file"] = shownText(event.name);
    if (event.bytes) {
        json["bytes"] = number(*event.bytes);
    }
}

void add(Json::Value& json, const Changed& event) {
    json["kind"] = "changed";
    json["by"] = event.isByUser ? "user" : "service";
    json["reticles"] = reticlesJson(event.reticles);
}

void add(Json::Value& json, const FaultsArmed& event) {
    json["kind"] = "faults";
    json["faults"] = wordsJson(event.faults);
}

void add(Json::Value& json, const PowerSwitched& event) {
    json["kind"] = event.isUp ? "up" : "down";
}

}  // namespace

std::string eventJson(const Event& event) {
    Json::Value json;
    json["event"] = number(event.number);
    json["time"] = eventTime(event.time);
    std::visit([&json](const auto& what) { add(json, what); }, event.what);
    return compactJson(json);
}

Json::Value reticleJson(const Reticle& reticle) {
    Json::Value json;
    json["index"] = reticle.index;
    json["name"] = shownText(reticle.name);
    json["color"] = shownText(reticle.userColor);
    json["deletable"] = reticle.isDeletable;
    json["active"] = reticle.isActive;
    json["file"] = shownText(RETICLES_DIRECTORY + reticle.fileName);
    return json;
}

Json::Value reticlesJson(const ReticleList& list) {
    Json::Value json(Json::arrayValue);
    for (const Reticle& reticle : list) {
        json.append(reticleJson(reticle));
    }
    return json;
}

}  // namespace sim
