// The part of JsonNetBuilder that turns the RTOS's list file into the reply's "reticles".
#include <iostream>
#include <utility>

#include "base/Log.h"
#include "commands/JsonNetBuilder.h"
#include "processing/JsonRetriever.h"
#include "processing/JsonText.h"
#include "reticles/FlashPaths.h"
#include "reticles/readStorageFile.h"

namespace reticled {
namespace {

/// Takes the reticle entries out of a parsed list file. The last entry of the root that is an
/// object decides, also when it has none, which is intended.
Json::Value findReticleEntries(Json::Value& root) {
    Json::Value entries;
    for (Json::Value& candidate : root) {
        try {
            entries = std::move(candidate[JsonRetriever::keyName(RETICLES)]);
        } catch (
            const JsonTypeError&) {  // NOLINT(bugprone-empty-catch): no object, so it has no say
        }
    }
    return entries;
}

}  // namespace

std::string JsonNetBuilder::_getReticlesList(const std::string& answer) {
    Json::Value root;
    parseJson(answer, Comments::SKIP, root);
    if (root.empty()) {
        return {};
    }
    std::string listName;
    for (Json::Value& entry : root) {
        try {
            listName = entry[JsonRetriever::keyName(PARAM)].asCString();
        } catch (
            const JsonTypeError&) {  // NOLINT(bugprone-empty-catch): names no file, so an earlier name holds
        }
    }
    return std::string(readStorageFile(FLASH_ROOT + listName).text());
}

void JsonNetBuilder::fillReticles(const std::string& answer) {
    _response[JsonRetriever::keyName(RETICLES)] =
        answer.empty() ? Json::Value() : _makeRecords(answer);
}

Json::Value JsonNetBuilder::_makeRecords(const std::string& answer) {
    Json::Value records;
    Json::Value root;
    // An "index" is copied into the reply as it stands, comments included.
    parseJson(_getReticlesList(answer), Comments::COLLECT, root);
    if (root.empty()) {
        logText(std::cerr, "Error: json str is wrong, can't be deserialized\n");
        return records;
    }
    Json::Value entries = findReticleEntries(root);
    for (Json::Value& entry : entries) {
        try {
            if (auto record = _makeRecord(entry)) {
                records.append(*std::move(record));
            }
        } catch (const JsonTypeError&) {
            logText(std::cerr, "Wrong json key\n");
        }
    }
    return records;
}

std::optional<Json::Value> JsonNetBuilder::_makeRecord(Json::Value& entry) {
    const std::string dataKey = JsonRetriever::keyName(DATA);
    const std::string indexKey = JsonRetriever::keyName(INDEX);
    const std::string nameKey = JsonRetriever::keyName(NAME);
    const std::string deletableKey = JsonRetriever::keyName(IS_DELETABLE);
    const std::string activeKey = JsonRetriever::keyName(IS_ACTIVE);
    const std::string userColor = entry[JsonRetriever::keyName(USER_COLOR)].asCString();
    const std::string fileName = entry[dataKey].asCString();
    const std::string data = _getReticleData(fileName, userColor);
    if (data.empty()) {
        return std::nullopt;
    }
    Json::Value record;
    record[indexKey] = std::move(entry[indexKey]);
    record[nameKey] = entry[nameKey].asCString();
    record[dataKey] = data;
    record[deletableKey] = entry[deletableKey].asInt() != 0;
    record[activeKey] = entry[activeKey].asInt() != 0;
    return record;
}

}  // namespace reticled
