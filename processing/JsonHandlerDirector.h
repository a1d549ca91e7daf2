#pragma once

#include <map>
#include <memory>
#include <string>

#include "base/SingleInstance.h"
#include "commands/JsonHandler.h"

namespace reticled {

/// Chooses the handler of a request by its "action".
///
/// Made by the first getInstance; afterwards the worker's alone.
class JsonHandlerDirector final : public JsonHandler, public SingleInstance<JsonHandlerDirector> {
public:
    JsonHandlerDirector();

    /// Returns "" whatever the request: the director carries out no command itself.
    std::string handleJsReq(const std::string& request) override;

    /// The handler for the request's action, which is compared byte for byte; empty for an action
    /// that nobody handles.
    /// \throws std::runtime_error on an empty text, Json::Exception when there is no string
    /// "action".
    [[nodiscard]] std::shared_ptr<JsonHandler> getHandler(const std::string& request);

private:
    std::map<std::string, std::shared_ptr<JsonHandler>> _handlers;
};

}  // namespace reticled
