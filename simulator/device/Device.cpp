#include "simulator/device/Device.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>

#include "simulator/base/JsonText.h"
#include "simulator/device/FactoryReticles.h"
#include "simulator/device/Message.h"

namespace sim {

namespace {

/// What the user sees a new reticle in until the device's own menu changes it.
constexpr const char* DEFAULT_USER_COLOR = "red";

Answer refusal(RetVal retVal, std::string reason) {
    return {retVal, std::nullopt, std::move(reason)};
}

Answer noSuchReticle(int index) {
    return refusal(RETICLE_INDEX_NOT_FOUND, "no reticle has index " + std::to_string(index));
}

Answer noIndex(const char* key) {
    return refusal(UNKNOWN_ACTION, std::string("\"") + key + "\" is not an index");
}

/// Why name and data of an addition or update cannot be used; none when they can.
std::optional<Answer> checkTexts(const Json::Value& message) {
    for (const char* key : {"param2_name", "param3_data"}) {
        if (!message[key].isString()) {
            return refusal(UNKNOWN_ACTION, std::string("\"") + key + "\" is not a string");
        }
    }
    return std::nullopt;
}

Answer noSuchData(const Json::Value& message) {
    return refusal(UNKNOWN_ACTION,
                   compactJson(message["param3_data"]) + " names no file inside the root");
}

/// At the start, where nothing is refused.
void requireWithin(std::size_t held, std::size_t limit, const std::string& what,
                   const std::string& option) {
    if (held > limit) {
        throw std::runtime_error("the device holds " + std::to_string(held) + " " + what +
                                 ", more than " + option + " " + std::to_string(limit));
    }
}

}  // namespace

Device::Device(Storage& storage, const Limits& limits) : _storage(storage), _limits(limits) {
    std::optional<ReticleList> saved = storage.load();
    if (!saved) {
        restoreFactory(storage);
        saved = factoryReticles();
    }
    requireWithin(saved->size(), limits.reticles, "reticles", "--max-reticles");
    requireWithin(storage.bytesOf(*saved), limits.bytes, "bytes", "--max-bytes");
    _change(std::move(*saved));
}

void Device::restoreFactory(Storage& storage) {
    for (const auto& [fileName, text] : factoryReticleTexts()) {
        storage.writeReticle(fileName, text);
    }
    storage.save(factoryReticles());
}

Answer Device::answer(const Json::Value& request) {
    if (!request.isArray() || request.size() != 1 || !request[0].isObject()) {
        return refusal(UNKNOWN_ACTION, "the request is not an array of one object");
    }
    const Json::Value& message = request[0];
    if (!message["msg_id"].isInt()) {
        return refusal(UNKNOWN_ACTION, "\"msg_id\" is not a number");
    }
    switch (message["msg_id"].asInt()) {
        case GET_RETICLES:
            return {OK, Storage::LIST_FILE, ""};
        case SET_ACTIVE_RETICLE:
            return _setActive(message);
        case ADD_RETICLE:
            return _add(message);
        case UPDATE_RETICLE:
            return _update(message);
        case DELETE_RETICLE:
            return _delete(message);
        default:
            return refusal(UNKNOWN_ACTION, "unknown \"msg_id\" " + message["msg_id"].asString());
    }
}

Answer Device::setActive(int index) {
    ReticleList next = _reticles;
    if (findReticle(next, index) == next.end()) {
        return noSuchReticle(index);
    }
    for (Reticle& reticle : next) {
        reticle.isActive = reticle.index == index;
    }
    _change(std::move(next));
    return {};
}

Answer Device::add(const std::string& name, std::string_view data) {
    if (auto refused = _checkRoom()) {
        return *refused;
    }
    return _append(name, _storage.keepNewData(data, _reticles));
}

Answer Device::remove(int index) {
    ReticleList next = _reticles;
    const auto reticle = findReticle(next, index);
    if (reticle == next.end()) {
        return noSuchReticle(index);
    }
    if (!reticle->isDeletable || reticle->isActive) {
        return refusal(RETICLE_CANT_BE_DELETED,
                       "reticle " + std::to_string(index) +
                           (reticle->isActive ? " is the active one" : " is not deletable"));
    }
    next.erase(reticle);
    _change(std::move(next));
    return {};
}

Answer Device::edit(int index, const std::function<void(Reticle&)>& change) {
    ReticleList next = _reticles;
    const auto reticle = findReticle(next, index);
    if (reticle == next.end()) {
        return noSuchReticle(index);
    }
    change(*reticle);
    return _store(std::move(next));
}

void Device::reset() {
    std::size_t bytes = listText(factoryReticles()).size();
    for (const auto& [fileName, text] : factoryReticleTexts()) {
        bytes += text.size();
    }
    requireWithin(factoryReticles().size(), _limits.reticles, "reticles", "--max-reticles");
    requireWithin(bytes, _limits.bytes, "bytes", "--max-bytes");
    restoreFactory(_storage);
    _reticles = factoryReticles();
}

Answer Device::_setActive(const Json::Value& message) {
    return message["param"].isInt() ? setActive(message["param"].asInt()) : noIndex("param");
}

Answer Device::_add(const Json::Value& message) {
    if (auto refused = checkTexts(message)) {
        return *refused;
    }
    if (auto refused = _checkRoom()) {
        return *refused;
    }
    const auto fileName = _storage.takeNewData(message["param3_data"].asString(), _reticles);
    return fileName ? _append(message["param2_name"].asString(), *fileName) : noSuchData(message);
}

Answer Device::_update(const Json::Value& message) {
    if (!message["param1_index"].isInt()) {
        return noIndex("param1_index");
    }
    if (auto refused = checkTexts(message)) {
        return *refused;
    }
    const int index = message["param1_index"].asInt();
    ReticleList next = _reticles;
    const auto reticle = findReticle(next, index);
    if (reticle == next.end()) {
        return noSuchReticle(index);
    }
    const auto fileName = _storage.takeNewData(message["param3_data"].asString(), _reticles);
    if (!fileName) {
        return noSuchData(message);
    }
    reticle->name = message["param2_name"].asString();
    reticle->fileName = *fileName;
    return _store(std::move(next));
}

Answer Device::_delete(const Json::Value& message) {
    return message["param"].isInt() ? remove(message["param"].asInt()) : noIndex("param");
}

std::optional<Answer> Device::_checkRoom() const {
    if (_reticles.size() < _limits.reticles) {
        return std::nullopt;
    }
    return refusal(RETICLES_COUNT_OUT_OF_BOUNDS,
                   "the device holds " + std::to_string(_reticles.size()) + " reticles");
}

/// Of a reticle whose data is on the storage already.
Answer Device::_append(const std::string& name, const std::string& fileName) {
    const int index = lowestFreeIndex(_reticles);
    ReticleList next = _reticles;
    // Below `index` no number is missing, so that it is the new one's place in the list as well.
    next.insert(next.begin() + index, {index, name, fileName, DEFAULT_USER_COLOR, true, false});
    return _store(std::move(next));
}

/// Of new data, which is on the storage already.
Answer Device::_store(ReticleList next) {
    const std::size_t bytes = _storage.bytesOf(next);
    if (bytes > _limits.bytes) {
        _storage.removeUnlisted(_reticles);
        return refusal(
            RETICLES_COUNT_OUT_OF_BOUNDS,
            std::to_string(bytes) + " bytes are more than " + std::to_string(_limits.bytes));
    }
    _change(std::move(next));
    return {};
}

void Device::_change(ReticleList next) {
    _storage.save(next);
    _reticles = std::move(next);
}

}  // namespace sim
