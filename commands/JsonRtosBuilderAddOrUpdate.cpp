#include "commands/JsonRtosBuilderAddOrUpdate.h"

#include <iostream>
#include <utility>

#include "base/Log.h"
#include "base/LoggedJson.h"

namespace reticled {
namespace {

// An RTOS message numbers its parameters in their fixed order; an added reticle has no first one.
constexpr auto FIRST_PARAM_PREFIX = "param1_";
constexpr auto SECOND_PARAM_PREFIX = "param2_";
constexpr auto THIRD_PARAM_PREFIX = "param3_";

}  // namespace

JsonRtosBuilderAddOrUpdate::~JsonRtosBuilderAddOrUpdate() {
    removeDataFiles();
}

void JsonRtosBuilderAddOrUpdate::reset() {
    JsonRtosBuilder::reset();
    _requests.clear();
}

void JsonRtosBuilderAddOrUpdate::build(const std::string& request) {
    // Intended: no separator, log readers look for "buildmsg: ".
    logLine(std::cout, "build", "msg: ", LoggedJson(request));
    const std::vector<ReticleRecord> records = JsonRetriever::getReticleRecords(request, RETICLES);
    // Intended: written for every request, also when it has records.
    logLine(std::cout, "build", "indices is empty ");
    std::vector<Json::Value> messages;
    messages.reserve(records.size());
    for (const ReticleRecord& record : records) {
        messages.push_back(_makeMessage(record));
    }
    // Only now: half the messages of a command that fails would stay until the next one.
    _requests = std::move(messages);
}

std::vector<std::string> JsonRtosBuilderAddOrUpdate::getRequests() {
    return _requestTexts(std::move(_requests));
}

Json::Value JsonRtosBuilderAddOrUpdate::_makeMessage(const ReticleRecord& record) {
    Json::Value message;
    if (record.index < 0) {
        message[JsonRetriever::keyName(MSG_ID)] = RTOS_ADD_RETICLE;
    } else {
        message[JsonRetriever::keyName(MSG_ID)] = RTOS_UPDATE_RETICLE;
        message[FIRST_PARAM_PREFIX + JsonRetriever::keyName(INDEX)] = record.index;
    }
    message[SECOND_PARAM_PREFIX + JsonRetriever::keyName(NAME)] = record.name;
    message[THIRD_PARAM_PREFIX + JsonRetriever::keyName(DATA)] = _saveReticleData(record.data);
    return message;
}

}  // namespace reticled
