#include "processing/PacketsHandler.h"

#include <iostream>
#include <string>

#include "base/FreeMemory.h"
#include "base/Log.h"
#include "base/LoggedJson.h"

#ifndef _GLIBCXX_ASSERTIONS
#error "the call through an empty handler pointer relies on the assertions of the C++ library"
#endif

namespace reticled {

PacketsHandler::PacketsHandler()
    : _packetStorage(PacketStorage::getInstance()),
      _handlerDirector(JsonHandlerDirector::getInstance()),
      _isRunning(true) {
    _handlerThread = std::make_shared<std::thread>(&PacketsHandler::_handlerRoutine, this);
}

PacketsHandler::~PacketsHandler() {
    _isRunning = false;
    if (_handlerThread && _handlerThread->joinable()) {
        _handlerThread->join();
    }
}

void PacketsHandler::_handlerRoutine() {
    while (_isRunning) {
        try {
            _handleNextPacket();
        } catch (const std::exception& error) {
            logLine(std::cerr, "_handlerRoutine, exception: ", error.what());
        }
    }
}

void PacketsHandler::_handleNextPacket() {
    const std::shared_ptr<Packet> packet = _packetStorage->pop(REQUEST_QUEUE);
    const FreeMemoryReturn freeMemoryReturn(packet->_data.size());
    logLine(std::cout, "PacketsHandler::_handlerRoutine, json req: ", LoggedJson(packet->_data));
    const std::shared_ptr<JsonHandler> handler = _handlerDirector->getHandler(packet->_data);
    // Intended: an action that nobody handles gives an empty pointer, and the call through it ends
    // the process at once: the library's assertions, on in every build, check operator* (not ->).
    // Restarting the service is up to its supervisor.
    std::string reply = (*handler).handleJsReq(packet->_data);
    packet->_data.swap(reply);
    _packetStorage->push(RESPONSE_QUEUE, packet);
}

}  // namespace reticled
