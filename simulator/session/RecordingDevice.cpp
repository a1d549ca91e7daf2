#include "simulator/session/RecordingDevice.h"

#include <optional>
#include <utility>

#include "simulator/base/Files.h"
#include "simulator/base/NamedFiles.h"

namespace sim {

RecordingDevice::RecordingDevice(ExchangeFunction device, std::filesystem::path root,
                                 std::ostream& session)
    : _device(std::move(device)), _root(std::move(root)), _session(session) {}

Delivery RecordingDevice::exchange(const std::string& request) {
    Exchange exchange;
    exchange.request = request;
    exchange.newData = _newData(request);
    exchange.answer = _device(request);
    exchange.files = _changedFiles.of(_filesShown(exchange.answer.bytes));
    _session.writeExchange(exchange);
    return std::move(exchange.answer);
}

std::vector<SessionFile> RecordingDevice::_newData(const std::string& request) const {
    const std::optional<std::string> name = newDataNamedBy(request);
    if (!name) {
        return {};
    }
    std::optional<std::string> text = readFile(_root / *name);
    return text ? std::vector<SessionFile>{{*name, *std::move(text)}} : std::vector<SessionFile>{};
}

std::vector<SessionFile> RecordingDevice::_filesShown(const std::string& answer) const {
    std::vector<SessionFile> files;
    const std::optional<std::string> listFile = listFileNamedBy(answer);
    const std::optional<std::string> list = listFile ? readFile(_root / *listFile) : std::nullopt;
    if (!list) {
        return files;
    }
    for (const std::string& name : reticleFilesNamedBy(*list)) {
        if (std::optional<std::string> text = readFile(_root / name)) {
            files.push_back({name, *std::move(text)});
        }
    }
    files.push_back({*listFile, *list});
    return files;
}

}  // namespace sim
