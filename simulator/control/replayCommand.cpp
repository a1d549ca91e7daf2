#include "simulator/control/replayCommand.h"

#include <stdexcept>
#include <string>

namespace sim {

Json::Value replayCommand(const Words& words, const ReplayDevice& device,
                          const std::filesystem::path& root) {
    const CommandForm& form = formOf(words);
    if (form.name != "status") {
        throw std::runtime_error(std::string(form.name) +
                                 " makes no sense here: the device only plays a session");
    }
    Json::Value status;
    status["root"] = (root / "").string();
    status["exchanges"] = static_cast<Json::UInt64>(device.played());
    status["session"] = static_cast<Json::UInt64>(device.size());
    status["isUp"] = true;
    return status;
}

}  // namespace sim
