#include "simulator/session/SessionRecorder.h"

#include <optional>
#include <utility>
#include <variant>

#include "simulator/base/Files.h"
#include "simulator/base/NamedFiles.h"

namespace sim {

SessionRecorder::SessionRecorder(std::filesystem::path root, std::ostream& session)
    : _root(std::move(root)), _session(session) {}

void SessionRecorder::record(const Event& event) {
    if (const auto* received = std::get_if<Received>(&event.what)) {
        // Before the device acts: the service may reuse the file right after the answer.
        _newData = _dataFor(std::string(received->request));
    } else if (const auto* answered = std::get_if<Answered>(&event.what)) {
        _record(*answered);
    }
}

void SessionRecorder::_record(const Answered& answered) {
    Exchange exchange;
    exchange.request = answered.request;
    exchange.newData = std::move(_newData);
    exchange.answer = answered.delivery;
    exchange.files = _changedFiles.of(_filesShown(exchange.answer.bytes));
    _session.writeExchange(exchange);
}

std::vector<SessionFile> SessionRecorder::_dataFor(const std::string& request) const {
    const std::optional<std::string> name = newDataNamedBy(request);
    if (!name) {
        return {};
    }
    std::optional<std::string> text = readFile(_root / *name);
    return text ? std::vector<SessionFile>{{*name, *std::move(text)}} : std::vector<SessionFile>{};
}

std::vector<SessionFile> SessionRecorder::_filesShown(const std::string& answer) const {
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
