#include "simulator/log/ServiceLog.h"

#include <utility>

#include "simulator/log/LogReader.h"

namespace sim {

ServiceLog::ServiceLog(std::istream& log) {
    LogReader reader(log);
    std::optional<LoggedCommand> command;
    while (const std::optional<LogRecord> record = reader.next()) {
        if (record->kind == LogRecord::Kind::CLIENT_REQUEST) {
            if (command) {
                _add(*command);
            }
            command.emplace(*record);
        } else if (command) {
            command->take(*record);
        }
    }
    if (command) {
        _add(*command);
    }
}

void ServiceLog::_add(const LoggedCommand& command) {
    const std::string place = "line " + std::to_string(command.line()) + ": ";
    if (command.outcome() == LoggedCommand::Outcome::UNKNOWN) {
        _remarks.push_back(place + "left out, the log does not tell how this request ended");
        return;
    }
    if (command.outcome() == LoggedCommand::Outcome::UNREACHABLE) {
        _remarks.push_back(place + "left out, this request did not get through to the device");
        return;
    }
    _session.clientRequests.push_back({command.text(), _session.exchanges.size()});
    for (Exchange exchange : command.exchanges()) {
        exchange.files = _changedFiles.of(std::move(exchange.files));
        _session.exchanges.push_back(std::move(exchange));
    }
}

}  // namespace sim
