#include "reticle-client/ReticleClient.h"

#include <utility>

#include "client/Connection.h"
#include "client/Deadline.h"
#include "client/FrameFormat.h"
#include "client/Request.h"
#include "client/receiveFrame.h"

namespace reticle {

ReticleClient::ReticleClient(std::string host, std::uint16_t port,
                             std::chrono::milliseconds timeout, int cancelDescriptor)
    : _host(std::move(host)),
      _port(port),
      _timeout(timeout),
      _cancelDescriptor(cancelDescriptor),
      _connection(
          std::make_unique<Connection>(_host, _port, Deadline(_timeout, _cancelDescriptor))) {}

ReticleClient::ReticleClient(ReticleClient&&) noexcept = default;
ReticleClient& ReticleClient::operator=(ReticleClient&&) noexcept = default;
ReticleClient::~ReticleClient() = default;

void ReticleClient::setUploadListener(UploadListener listener) {
    _uploadListener = std::move(listener);
}

Reply ReticleClient::list() {
    return _exchange(listRequest());
}

Reply ReticleClient::activate(int index) {
    return _exchange(activateRequest(index));
}

Reply ReticleClient::add(const std::vector<NewReticle>& reticles) {
    return _exchange(addRequest(reticles));
}

Reply ReticleClient::update(int index, std::string name, std::string data) {
    return _exchange(updateRequest(index, {std::move(name), std::move(data)}));
}

Reply ReticleClient::remove(const std::vector<int>& indices) {
    return _exchange(removeRequest(indices));
}

Reply ReticleClient::_exchange(const std::string& request) {
    Reply reply;
    try {
        reply = _sendAndReceive(request);
    } catch (...) {
        _connection.reset();
        throw;
    }
    if (reply.isRefused()) {
        throw Refused(std::move(reply));
    }
    return reply;
}

Reply ReticleClient::_sendAndReceive(const std::string& request) {
    const Deadline deadline(_timeout, _cancelDescriptor);
    if (!_connection) {
        _connection = std::make_unique<Connection>(_host, _port, deadline);
    }
    const std::string frame = encodeFrame(request);
    Connection::SentListener listener;
    if (_uploadListener) {
        listener = [this, &frame](std::size_t sent) { _uploadListener(sent, frame.size()); };
    }
    _connection->send(frame, deadline, listener);
    return Reply::parse(receiveFrame(*_connection, deadline));
}

}  // namespace reticle
