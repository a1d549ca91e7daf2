#include "commands/JsonHandler.h"

#include <iostream>

#include "base/Log.h"
#include "base/LoggedJson.h"
#include "commands/JsonRtosBuilderList.h"

namespace reticled {
namespace {

std::string buildListRequest() {
    JsonRtosBuilderList builder;
    builder.reset();
    builder.buildMsgId();
    builder.buildParam();
    builder.finish();
    return builder.getRequest();
}

}  // namespace

JsonHandler::JsonHandler()
    : _localCommunicator(LocalCommunicator::getInstance()),
      _listRequest(buildListRequest()),
      _netBuilder(std::make_shared<JsonNetBuilder>()) {}

bool JsonHandler::_exchangeAll(const std::vector<std::string>& requests) {
    _netBuilder->reset();
    for (const std::string& request : requests) {
        logLine(std::cout, "handleJsReq", ", rtos request: ", LoggedJson(request));
        if (!_netBuilder->setResult(_localCommunicator->send_and_get(request))) {
            return false;
        }
    }
    return true;
}

void JsonHandler::_refreshList() {
    _netBuilder->fillReticles(_localCommunicator->send_and_get(_listRequest));
}

std::string JsonHandler::_finishReply() {
    _netBuilder->finish();
    std::string reply = _netBuilder->getResponse();
    logLine(std::cout, "handleJsReq", ", response: ", LoggedJson(reply));
    return reply;
}

}  // namespace reticled
