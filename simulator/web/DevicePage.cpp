#include "simulator/web/DevicePage.h"

#include "simulator/base/JsonText.h"
#include "simulator/events/EventJson.h"
#include "simulator/web/ReticlePicture.h"
#include "simulator/web/callOn.h"

namespace sim {

namespace {

WebServer::Device deviceBehind(const DevicePage::Parts& parts, const std::filesystem::path& root) {
    const auto command = [parts](const Words& words) {
        return callOn(parts.io,
                      [&parts, &words] { return compactJson(parts.commands.run(words)); });
    };
    const auto picture = [parts, root](int index) {
        const ReticleList list = callOn(parts.io, [&parts] { return parts.device.reticles(); });
        return reticlePicture(list, root, index);
    };
    return {command, picture};
}

}  // namespace

DevicePage::DevicePage(const WebAddress& address, const Parts& parts,
                       const std::filesystem::path& root)
    : _server(address, deviceBehind(parts, root)) {
    parts.events.subscribe([this](const Event& event) { _server.publish(eventJson(event)); });
}

}  // namespace sim
