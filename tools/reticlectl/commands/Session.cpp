#include "tools/reticlectl/commands/Session.h"

#include <utility>

#include "tools/reticlectl/outcome/PartialChange.h"
#include "tools/reticlectl/terminal/DisplayText.h"
#include "tools/reticlectl/terminal/InterruptSignal.h"

namespace reticlectl {

namespace {

/// `call`, its failure told together with what became of the other items.
reticle::Reply callForItems(const Json::Value& items, const Session::Call& call,
                            reticle::ReticleClient& client) {
    try {
        return call(client);
    } catch (const reticle::InvalidRequest&) {
        throw;
    } catch (const reticle::ClientError& error) {
        if (items.size() < 2) {
            throw;
        }
        throw PartialChange(items, error.doneCount(), std::current_exception());
    }
}

}  // namespace

reticle::Reply Session::list() const {
    constexpr int NOT_CANCELLED = -1;
    return _ask([](reticle::ReticleClient& client) { return client.list(); }, NOT_CANCELLED);
}

void Session::change(const Json::Value& items, const Call& call) const {
    const InterruptSignal interrupt;
    print(_ask([&](reticle::ReticleClient& client) { return callForItems(items, call, client); },
               interrupt.descriptor()));
}

reticle::Reply Session::_ask(const Call& call, int cancelDescriptor) const {
    const auto progress = progressLine();
    if (!progress) {
        reticle::ReticleClient client = connect(cancelDescriptor);
        return call(client);
    }
    reticle::ReticleClient client = connect(
        cancelDescriptor, [&](std::chrono::milliseconds passed) { progress->showWait(passed); });
    client.setUploadListener(
        [&](std::size_t sent, std::size_t total) { progress->showUpload(sent, total); });
    return call(client);
}

reticle::ReticleClient Session::connect(int cancelDescriptor,
                                        reticle::ReticleClient::WaitListener waitListener) const {
    const std::chrono::duration<double> timeout(timeoutSeconds);
    return reticle::ReticleClient(host, port, std::chrono::ceil<std::chrono::milliseconds>(timeout),
                                  cancelDescriptor, std::move(waitListener));
}

std::shared_ptr<ProgressLine> Session::progressLine() const {
    return terminal.takesErrors
               ? std::make_shared<ProgressLine>(err, printable(peer()), timeoutSeconds)
               : nullptr;
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
        out << printableJson(reply.json) << '\n';
    } else {
        out << renderTable(reply.reticles, tableStyle());
    }
}

void Session::note(const std::string& text) const {
    err << "reticlectl: " << printable(text) << '\n';
}

}  // namespace reticlectl
