#include "tests/soak/ListReply.h"

#include <json/reader.h>

ListReply::ListReply(const std::string& reply) {
    Json::Reader().parse(reply, _root);
}

bool ListReply::isSpoilt() const {
    return result() != "OK" || _root["reticles"].empty();
}

std::optional<int> ListReply::indexOf(const std::string& name) const {
    for (const Json::Value& reticle : _root["reticles"]) {
        if (reticle["name"].asString() == name) {
            return reticle["index"].asInt();
        }
    }
    return std::nullopt;
}

std::string ListReply::nameAt(int index) const {
    for (const Json::Value& reticle : _root["reticles"]) {
        if (reticle["index"].asInt() == index) {
            return reticle["name"].asString();
        }
    }
    return {};
}

bool ListReply::isActive(int index) const {
    for (const Json::Value& reticle : _root["reticles"]) {
        if (reticle["index"].asInt() == index) {
            return reticle["isActive"].asBool();
        }
    }
    return false;
}
