#include "simulator/control/DeviceCommands.h"

#include <chrono>
#include <cmath>
#include <map>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "simulator/base/numberIn.h"
#include "simulator/events/EventJson.h"

namespace sim {

namespace {

constexpr double MAX_DOWN_S = 3600;
constexpr double MS_PER_S = 1000;

int indexIn(const std::string& word) {
    const auto index = numberIn<int>(word);
    if (!index || *index < 0) {
        throw std::runtime_error("'" + word + "' is not an index");
    }
    return *index;
}

Fault faultIn(const std::string& word) {
    if (word.find('@') != std::string::npos) {
        throw std::runtime_error("the exchange is a word of its own: fault KIND[:ARG] N");
    }
    try {
        return parseFault(word);
    } catch (const std::invalid_argument& error) {
        throw std::runtime_error(error.what());
    }
}

bool isYes(const std::string& word) {
    if (word != "yes" && word != "no") {
        throw std::runtime_error("'" + word + "' is neither yes nor no");
    }
    return word == "yes";
}

std::chrono::milliseconds downTimeIn(const Words& words) {
    if (words.size() == 1) {
        return std::chrono::milliseconds(0);
    }
    const auto seconds = words.size() == 3 ? numberIn<double>(words[2]) : std::nullopt;
    if (words[1] != "--down" || !seconds || !(*seconds >= 0 && *seconds <= MAX_DOWN_S)) {
        throw std::runtime_error("after restart comes nothing, or --down and 0 to 3600 seconds");
    }
    return std::chrono::milliseconds(std::lround(*seconds * MS_PER_S));
}

void requireDone(const Answer& answer) {
    if (answer.retVal != OK) {
        throw std::runtime_error(answer.reason);
    }
}

}  // namespace

Json::Value DeviceCommands::run(const Words& words) {
    static const std::map<std::string_view, Json::Value (DeviceCommands::*)(const Words&)> COMMANDS{
        {"status", &DeviceCommands::_status},
        {"fault", &DeviceCommands::_fault},
        {"faults", &DeviceCommands::_faultsOff},
        {"activate", &DeviceCommands::_activate},
        {"color", &DeviceCommands::_color},
        {"rename", &DeviceCommands::_rename},
        {"add", &DeviceCommands::_add},
        {"delete", &DeviceCommands::_delete},
        {"deletable", &DeviceCommands::_deletable},
        {"restart", &DeviceCommands::_restart},
        {"reset", &DeviceCommands::_reset},
    };
    const auto command = COMMANDS.find(formOf(words).name);
    if (command == COMMANDS.end()) {
        throw std::runtime_error(words.front() + " is no command that has a result");
    }
    Json::Value result = (this->*command->second)(words);
    _parts.state.tell(true);
    return result;
}

Json::Value DeviceCommands::_status(const Words& /*words*/) {
    const ReticleList& reticles = _parts.device.reticles();
    Json::Value status = _armed();
    status["root"] = _parts.storage.rootText();
    status["reticles"] = reticlesJson(reticles);
    status["exchanges"] = static_cast<Json::UInt64>(_parts.faulty.count());
    status["bytes"] = static_cast<Json::UInt64>(_parts.storage.bytesOf(reticles));
    status["isUp"] = _parts.server.isUp();
    return status;
}

Json::Value DeviceCommands::_fault(const Words& words) {
    Fault fault = faultIn(words[1]);
    fault.exchange = _exchangeIn(words.size() == 3 ? words[2] : "next");
    _parts.faulty.arm(fault);
    return _armed();
}

Json::Value DeviceCommands::_faultsOff(const Words& words) {
    if (words[1] != "off") {
        throw std::runtime_error("faults can only go off");
    }
    _parts.faulty.disarm();
    return _armed();
}

Json::Value DeviceCommands::_activate(const Words& words) {
    const int index = indexIn(words[1]);
    requireDone(_parts.device.setActive(index));
    return _reticle(index);
}

Json::Value DeviceCommands::_color(const Words& words) {
    const int index = indexIn(words[1]);
    requireDone(
        _parts.device.edit(index, [&words](Reticle& reticle) { reticle.userColor = words[2]; }));
    return _reticle(index);
}

Json::Value DeviceCommands::_rename(const Words& words) {
    const int index = indexIn(words[1]);
    requireDone(_parts.device.edit(index, [&words](Reticle& reticle) { reticle.name = words[2]; }));
    return _reticle(index);
}

Json::Value DeviceCommands::_add(const Words& words) {
    if (words[2].empty()) {
        throw std::runtime_error("the data is empty: no list would show the reticle");
    }
    const int index = lowestFreeIndex(_parts.device.reticles());
    requireDone(_parts.device.add(words[1], words[2]));
    return _reticle(index);
}

Json::Value DeviceCommands::_delete(const Words& words) {
    requireDone(_parts.device.remove(indexIn(words[1])));
    return Json::objectValue;
}

Json::Value DeviceCommands::_deletable(const Words& words) {
    const int index = indexIn(words[1]);
    const bool isDeletable = isYes(words[2]);
    requireDone(_parts.device.edit(
        index, [isDeletable](Reticle& reticle) { reticle.isDeletable = isDeletable; }));
    return _reticle(index);
}

Json::Value DeviceCommands::_restart(const Words& words) {
    const std::chrono::milliseconds down = downTimeIn(words);
    _parts.events.publish(PowerSwitched{false});
    _parts.server.restart(down, [&events = _parts.events] { events.publish(PowerSwitched{true}); });
    Json::Value power;
    power["isUp"] = _parts.server.isUp();
    return power;
}

Json::Value DeviceCommands::_reset(const Words& /*words*/) {
    _parts.device.reset();
    return Json::objectValue;
}

/// Which exchange a fault hits; none means every one.
std::optional<std::size_t> DeviceCommands::_exchangeIn(const std::string& when) const {
    const std::size_t next = _parts.faulty.count() + 1;
    if (when == "every") {
        return std::nullopt;
    }
    if (when == "next") {
        return next;
    }
    const auto number = numberIn<std::size_t>(when);
    if (!number || *number < next) {
        throw std::runtime_error("'" + when +
                                 "' is neither next nor every nor an exchange to come");
    }
    return *number;
}

Json::Value DeviceCommands::_armed() const {
    Json::Value armed;
    armed["faults"] = wordsJson(faultTexts(_parts.faulty.faults()));
    return armed;
}

Json::Value DeviceCommands::_reticle(int index) const {
    ReticleList reticles = _parts.device.reticles();
    return reticleJson(*findReticle(reticles, index));
}

}  // namespace sim
