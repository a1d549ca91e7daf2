#include "simulator/device/ReticleList.h"

#include <json/value.h>

#include <algorithm>
#include <stdexcept>

#include "simulator/base/JsonText.h"

namespace sim {

namespace {

void require(bool holds, const std::string& complaint) {
    if (!holds) {
        throw std::runtime_error(complaint);
    }
}

Json::Value toJson(const Reticle& reticle) {
    Json::Value entry;
    entry["index"] = reticle.index;
    entry["name"] = reticle.name;
    entry["data"] = reticle.fileName;
    entry["userColor"] = reticle.userColor;
    entry["isDeletable"] = reticle.isDeletable;
    entry["isActive"] = reticle.isActive;
    return entry;
}

bool isPlainFileName(const std::string& name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of(std::string("/\0", 2)) == std::string::npos;
}

Reticle fromJson(const Json::Value& entry) {
    require(entry.isObject(), "an entry of \"reticles\" is not an object");
    require(entry["index"].isInt() && entry["index"].asInt() >= 0,
            "an \"index\" is not a number from 0 on");
    for (const char* key : {"name", "data", "userColor"}) {
        require(entry[key].isString(), std::string("a \"") + key + "\" is not a string");
    }
    for (const char* key : {"isDeletable", "isActive"}) {
        require(entry[key].isBool(), std::string("an \"") + key + "\" is neither true nor false");
    }
    require(isPlainFileName(entry["data"].asString()), "a \"data\" is not a plain file name");
    return {entry["index"].asInt(),        entry["name"].asString(),
            entry["data"].asString(),      entry["userColor"].asString(),
            entry["isDeletable"].asBool(), entry["isActive"].asBool()};
}

bool isLowerIndex(const Reticle& left, const Reticle& right) {
    return left.index < right.index;
}

bool isSameIndex(const Reticle& left, const Reticle& right) {
    return left.index == right.index;
}

}  // namespace

ReticleList::iterator findReticle(ReticleList& list, int index) {
    return std::find_if(list.begin(), list.end(),
                        [index](const Reticle& reticle) { return reticle.index == index; });
}

int lowestFreeIndex(const ReticleList& list) {
    int free = 0;
    for (const Reticle& reticle : list) {
        if (reticle.index != free) {
            break;
        }
        ++free;
    }
    return free;
}

std::string listText(const ReticleList& list) {
    Json::Value entries(Json::arrayValue);
    for (const Reticle& reticle : list) {
        entries.append(toJson(reticle));
    }
    Json::Value root(Json::arrayValue);
    root[0]["reticles"] = entries;
    return readableJson(root);
}

ReticleList parseListText(const std::string& text) {
    const Json::Value root = parseJson(text);
    require(
        root.isArray() && root.size() == 1 && root[0].isObject() && root[0]["reticles"].isArray(),
        "it is not an array of one object with an array \"reticles\"");
    ReticleList list;
    for (const Json::Value& entry : root[0]["reticles"]) {
        list.push_back(fromJson(entry));
    }
    std::sort(list.begin(), list.end(), isLowerIndex);
    require(std::adjacent_find(list.begin(), list.end(), isSameIndex) == list.end(),
            "two reticles have the same \"index\"");
    return list;
}

}  // namespace sim
