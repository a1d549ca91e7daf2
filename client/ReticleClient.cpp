#include "reticle-client/ReticleClient.h"

#include <utility>

#include "client/Connection.h"
#include "client/Deadline.h"
#include "client/FrameFormat.h"
#include "client/Request.h"
#include "client/receiveFrame.h"

namespace reticle {

namespace {

/// What is said of a change whose reply did not come.
std::string uncertain(const ClientError& error) {
    return std::string(error.what()) +
           "; the change may have been carried out all the same: list the reticles before you "
           "repeat it";
}

}  // namespace

ReticleClient::ReticleClient(std::string host, std::uint16_t port,
                             std::chrono::milliseconds timeout, int cancelDescriptor,
                             WaitListener waitListener)
    : _host(std::move(host)),
      _port(port),
      _timeout(timeout),
      _cancelDescriptor(cancelDescriptor),
      _waitListener(std::move(waitListener)) {
    _connect(_newDeadline());
}

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
    return _change({activateRequest(index)});
}

Reply ReticleClient::add(const std::vector<NewReticle>& reticles) {
    std::vector<std::string> requests;
    requests.reserve(reticles.size());
    for (const NewReticle& reticle : reticles) {
        requests.push_back(addRequest(reticle));
    }
    return _change(requests);
}

Reply ReticleClient::update(int index, std::string name, std::string data) {
    return _change({updateRequest(index, {std::move(name), std::move(data)})});
}

Reply ReticleClient::remove(const std::vector<int>& indices) {
    std::vector<std::string> requests;
    requests.reserve(indices.size());
    for (const int index : indices) {
        requests.push_back(removeRequest(index));
    }
    return _change(requests);
}

Reply ReticleClient::_change(const std::vector<std::string>& requests) {
    if (requests.empty()) {
        return list();
    }
    Reply reply;
    for (std::size_t done = 0; done < requests.size(); ++done) {
        reply = _changeOne(requests[done], done, requests.size() > 1);
    }
    return reply;
}

Reply ReticleClient::_changeOne(const std::string& request, std::size_t doneCount,
                                bool isOneOfSeveral) {
    if (!_connection) {
        // What this throws is no uncertain change: nothing was sent.
        _connect(_newDeadline());
    }
    try {
        return _exchange(request);
    } catch (const Refused& refusal) {
        throw Refused(refusal.reply(), doneCount, isOneOfSeveral ? _listIfPossible() : nullptr);
    } catch (const NoReply& error) {
        throw NoReply(uncertain(error), doneCount);
    } catch (const Cancelled& error) {
        throw Cancelled(uncertain(error), doneCount);
    } catch (const MalformedReply& error) {
        throw MalformedReply(uncertain(error), doneCount);
    }
}

Reply ReticleClient::_exchange(const std::string& request) {
    const Deadline deadline = _newDeadline();
    if (!_connection) {
        _connect(deadline);
    }
    Reply reply;
    try {
        reply = _sendAndReceive(request, deadline);
    } catch (...) {
        _connection.reset();
        throw;
    }
    if (reply.isRefused()) {
        throw Refused(std::move(reply));
    }
    return reply;
}

Reply ReticleClient::_sendAndReceive(const std::string& request, const Deadline& deadline) {
    const std::string frame = encodeFrame(request);
    Connection::SentListener listener;
    if (_uploadListener) {
        listener = [this, &frame](std::size_t sent) { _uploadListener(sent, frame.size()); };
    }
    _connection->send(frame, deadline, listener);
    return Reply::parse(receiveFrame(*_connection, deadline));
}

Deadline ReticleClient::_newDeadline() const {
    return Deadline(_timeout, _cancelDescriptor, _waitListener);
}

void ReticleClient::_connect(const Deadline& deadline) {
    _connection = std::make_unique<Connection>(_host, _port, deadline);
}

std::shared_ptr<const Reply> ReticleClient::_listIfPossible() {
    try {
        return std::make_shared<const Reply>(list());
    } catch (const ClientError&) {
        // The refusal is the news; what became of the list can be asked again.
        return nullptr;
    }
}

}  // namespace reticle
