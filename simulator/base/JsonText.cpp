#include "simulator/base/JsonText.h"

#include <json/reader.h>
#include <json/writer.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <stdexcept>

namespace sim {

namespace {

std::string write(const Json::Value& value, const char* indentation) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = indentation;
    builder["emitUTF8"] = true;
    return Json::writeString(builder, value);
}

}  // namespace

Json::Value parseJson(const std::string& text) {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value value;
    std::string errors;
    try {
        if (reader->parse(text.data(), text.data() + text.size(), &value, &errors)) {
            return value;
        }
    } catch (const Json::Exception& tooDeep) {
        errors = tooDeep.what();
    }
    std::replace(errors.begin(), errors.end(), '\n', ' ');
    throw std::runtime_error(errors);
}

std::vector<std::string> parseWords(const std::string& text) {
    const Json::Value json = parseJson(text);
    if (!json.isArray() ||
        !std::all_of(json.begin(), json.end(), std::mem_fn(&Json::Value::isString))) {
        throw std::runtime_error("a command is an array of strings");
    }
    std::vector<std::string> words;
    for (const Json::Value& word : json) {
        words.push_back(word.asString());
    }
    return words;
}

Json::Value wordsJson(const std::vector<std::string>& words) {
    Json::Value json(Json::arrayValue);
    for (const std::string& word : words) {
        json.append(word);
    }
    return json;
}

std::optional<Json::Value> parseLeniently(const std::string& text) {
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    Json::Value value;
    try {
        if (reader->parse(text.data(), text.data() + text.size(), &value, nullptr)) {
            return value;
        }
    } catch (const Json::Exception&) {
        // Nested too deeply: the service makes nothing of it either.
    }
    return std::nullopt;
}

std::string compactJson(const Json::Value& value) {
    return write(value, "");
}

std::string readableJson(const Json::Value& value) {
    return write(value, "    ") + '\n';
}

}  // namespace sim
