#include "tools/reticlectl/commands/Session.h"

#include <memory>

#include "tools/reticlectl/terminal/UploadProgress.h"

namespace reticlectl {

reticle::ReticleClient Session::connect(int cancelDescriptor) const {
    const std::chrono::duration<double> timeout(timeoutSeconds);
    reticle::ReticleClient client(host, port, std::chrono::ceil<std::chrono::milliseconds>(timeout),
                                  cancelDescriptor);
    if (terminal.takesErrors) {
        client.setUploadListener(
            [progress = std::make_shared<UploadProgress>(err)](
                std::size_t sent, std::size_t total) { progress->show(sent, total); });
    }
    return client;
}

std::string Session::peer() const {
    return host + ':' + std::to_string(port);
}

TableStyle Session::tableStyle() const {
    TableStyle style;
    style.hasColors = color == "always" || (color == "auto" && terminal.showsColors);
    if (const auto size = terminal.size()) {
        style.width = size->columns;
    }
    return style;
}

void Session::print(const reticle::Reply& reply) const {
    if (wantsJson) {
        out << reply.json << '\n';
    } else {
        out << renderTable(reply.reticles, tableStyle());
    }
}

}  // namespace reticlectl
