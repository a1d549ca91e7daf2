#include "tools/reticlectl/Session.h"

#include "tools/reticlectl/ReticleTable.h"

namespace reticlectl {

reticle::ReticleClient Session::connect() const {
    const std::chrono::duration<double> timeout(timeoutSeconds);
    return {host, port, std::chrono::ceil<std::chrono::milliseconds>(timeout)};
}

void Session::print(const reticle::Reply& reply) const {
    if (wantsJson) {
        out << reply.json << '\n';
    } else {
        out << renderTable(reply.reticles);
    }
}

}  // namespace reticlectl
