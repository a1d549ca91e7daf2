#include "simulator/base/NamedFiles.h"

#include <json/value.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "simulator/base/Files.h"
#include "simulator/base/JsonText.h"

namespace sim {

namespace {

/// The members `key` of all elements of `text` that are objects.
std::vector<Json::Value> membersOfElements(const std::string& text, const char* key) {
    std::vector<Json::Value> members;
    const std::optional<Json::Value> root = parseLeniently(text);
    if (root && (root->isArray() || root->isObject())) {
        for (const Json::Value& element : *root) {
            if (element.isObject()) {
                members.push_back(element[key]);
            }
        }
    }
    return members;
}

std::optional<std::string> insideRoot(std::string name) {
    return staysInside(name) ? std::optional(std::move(name)) : std::nullopt;
}

}  // namespace

std::optional<std::string> newDataNamedBy(const std::string& request) {
    for (const Json::Value& name : membersOfElements(request, "param3_data")) {
        if (name.isString() && name.asString().starts_with(DEVICE_ROOT)) {
            return insideRoot(name.asString().substr(DEVICE_ROOT.size()));
        }
    }
    return std::nullopt;
}

std::optional<std::string> listFileNamedBy(const std::string& answer) {
    const std::vector<Json::Value> names = membersOfElements(answer, "param");
    const auto last = std::find_if(names.rbegin(), names.rend(),
                                   [](const Json::Value& name) { return name.isString(); });
    return last == names.rend() ? std::nullopt : insideRoot(last->asCString());
}

std::vector<std::string> reticleFilesNamedBy(const std::string& listText) {
    const std::vector<Json::Value> lists = membersOfElements(listText, "reticles");
    std::vector<std::string> files;
    if (lists.empty() || !lists.back().isArray()) {
        return files;
    }
    for (const Json::Value& entry : lists.back()) {
        if (!entry.isObject() || !entry["data"].isString()) {
            continue;
        }
        const std::string name = RETICLES_DIRECTORY + entry["data"].asString();
        if (staysInside(name) && std::find(files.begin(), files.end(), name) == files.end()) {
            files.push_back(name);
        }
    }
    return files;
}

}  // namespace sim
