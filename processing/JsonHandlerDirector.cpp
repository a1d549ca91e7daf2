#include "processing/JsonHandlerDirector.h"

#include "commands/JsonAddOrUpdateHandler.h"
#include "commands/JsonDeleteRetHandler.h"
#include "commands/JsonGetRetsHandler.h"
#include "commands/JsonSetActiveRetHandler.h"
#include "processing/ActionNames.h"
#include "processing/JsonRetriever.h"

namespace reticled {

JsonHandlerDirector::JsonHandlerDirector()
    : _handlers{
          {actionNames[RETICLES_GET_ALL], std::make_shared<JsonGetRetsHandler>()},
          {actionNames[RETICLES_ADD_OR_UPDATE], std::make_shared<JsonAddOrUpdateHandler>()},
          {actionNames[RETICLES_DELETE], std::make_shared<JsonDeleteRetHandler>()},
          {actionNames[RETICLE_SET_ACTIVE], std::make_shared<JsonSetActiveRetHandler>()},
      } {}

std::string JsonHandlerDirector::handleJsReq(const std::string& /*request*/) {
    return {};
}

std::shared_ptr<JsonHandler> JsonHandlerDirector::getHandler(const std::string& request) {
    return _handlers[JsonRetriever::getStrVal(request, ACTION)];
}

}  // namespace reticled
