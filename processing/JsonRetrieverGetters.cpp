// The part of JsonRetriever that takes values out of JSON texts.
#include <iostream>
#include <stdexcept>

#include "base/Log.h"
#include "processing/JsonRetriever.h"
#include "processing/JsonText.h"

namespace reticled {
namespace {

constexpr auto UNPARSABLE_MESSAGE = "Error: json str is wrong, can't be deserialized\n";
constexpr auto WRONG_KEY_MESSAGE = "Wrong json key\n";
constexpr std::size_t USUAL_LIST_SIZE = 10;

/// The member of the object `text` that the strict getters convert. Whether the text parses is not
/// looked at: what could be read of it decides.
Json::Value member(const std::string& text, const JsonKey& key) {
    Json::Value root;
    parseJson(text, Comments::SKIP, root);
    return std::move(root[JsonRetriever::keyName(key)]);
}

/// Parses for the lenient getters; false, after a message, where there is nothing to read.
bool parseLeniently(const std::string& text, Json::Value& root) {
    bool readable = false;
    try {
        readable = parseJson(text, Comments::SKIP, root) && !root.empty();
    } catch (const Json::Exception&) {
        readable = false;
    }
    if (!readable) {
        logText(std::cerr, UNPARSABLE_MESSAGE);
    }
    return readable;
}

/// Gives `use` every entry of the list under `key` of the object `text`; a message stands for each
/// entry, and for a root, that cannot be used.
template <class Use>
void forEachListEntry(const std::string& text, const JsonKey& key, const Use& use) {
    Json::Value root;
    if (!parseLeniently(text, root)) {
        return;
    }
    if (!root.isObject()) {
        logText(std::cerr, WRONG_KEY_MESSAGE);
        return;
    }
    for (Json::Value& entry : root[JsonRetriever::keyName(key)]) {
        try {
            use(entry);
        } catch (const JsonTypeError&) {
            logText(std::cerr, WRONG_KEY_MESSAGE);
        }
    }
}

void convert(const Json::Value& value, int& result) {
    result = value.asInt();
}

void convert(const Json::Value& value, std::string& result) {
    result = value.asCString();
}

ReticleRecord toRecord(Json::Value& entry) {
    std::string name = entry[JsonRetriever::keyName(NAME)].asCString();
    std::string data = entry[JsonRetriever::keyName(DATA)].asCString();
    const Json::Value& index = entry[JsonRetriever::keyName(INDEX)];
    return {index.isNull() ? -1 : index.asInt(), std::move(name), std::move(data)};
}

}  // namespace

bool JsonRetriever::isJson(const std::string& text) {
    try {
        Json::Value root;
        return parseJson(text, Comments::SKIP, root);
    } catch (const std::exception& error) {
        logLine(std::cerr, error.what());
        return false;
    }
}

int JsonRetriever::getIntVal(const std::string& text, const JsonKey& key) {
    if (text.empty()) {
        throw std::runtime_error("getIntVal: json msg is empty");
    }
    return member(text, key).asInt();
}

std::string JsonRetriever::getStrVal(const std::string& text, const JsonKey& key) {
    if (text.empty()) {
        throw std::runtime_error("getStrVal: json msg is empty");
    }
    return member(text, key).asCString();
}

template <class T>
T JsonRetriever::getVal(const std::string& text, const JsonKey& key) {
    T result{};
    if constexpr (std::is_same_v<T, int>) {
        result = -1;
    }
    Json::Value root;
    if (text.empty() || !parseLeniently(text, root)) {
        return result;
    }
    for (Json::Value& entry : root) {
        try {
            convert(entry[keyName(key)], result);
            logLine(std::cerr, "json value: ", result);
        } catch (const JsonTypeError&) {
            logText(std::cerr, WRONG_KEY_MESSAGE);
        }
    }
    return result;
}

template int JsonRetriever::getVal<int>(const std::string& text, const JsonKey& key);
template std::string JsonRetriever::getVal<std::string>(const std::string& text,
                                                        const JsonKey& key);

std::vector<int> JsonRetriever::getIntVector(const std::string& text, const JsonKey& key) {
    std::vector<int> values;
    values.reserve(USUAL_LIST_SIZE);
    forEachListEntry(text, key, [&](const Json::Value& entry) { values.push_back(entry.asInt()); });
    return values;
}

std::vector<ReticleRecord> JsonRetriever::getReticleRecords(const std::string& text,
                                                            const JsonKey& key) {
    std::vector<ReticleRecord> records;
    records.reserve(USUAL_LIST_SIZE);
    forEachListEntry(text, key, [&](Json::Value& entry) { records.push_back(toRecord(entry)); });
    return records;
}

}  // namespace reticled
