#include "processing/JsonHandlerDirector.h"

#include "commands/JsonGetRetsHandler.h"
#include "processing/ActionNames.h"
#include "processing/JsonRetriever.h"

namespace reticled {

JsonHandlerDirector::JsonHandlerDirector()
    : _handlers{
          {actionNames[RETICLES_GET_ALL], std::make_shared<JsonGetRetsHandler>()},
      } {}

std::string JsonHandlerDirector::handleJsReq(const std::string& /*request*/) {
    return {};
}

std::shared_ptr<JsonHandler> JsonHandlerDirector::getHandler(const std::string& request) {
    return _handlers[JsonRetriever::getStrVal(request, ACTION)];
}

}  // namespace reticled
