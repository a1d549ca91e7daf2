#include "tools/reticlectl/trace/Trace.h"

#include <unistd.h>

#include <chrono>
#include <memory>
#include <optional>
#include <sstream>
#include <system_error>
#include <utility>

#include <asio/ip/udp.hpp>

#include "tools/reticlectl/commands/NumberArguments.h"
#include "tools/reticlectl/outcome/Failure.h"

namespace reticlectl {

namespace {

using asio::ip::tcp;

/// After a failed accept, for want of descriptors say: at once it would only fail again.
constexpr std::chrono::milliseconds ACCEPT_RETRY{100};

std::optional<tcp::endpoint> endpointFrom(const std::string& text) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos || !checkPort(text.substr(colon + 1)).empty()) {
        return std::nullopt;
    }
    std::string host = text.substr(0, colon);
    if (host.starts_with('[') && host.ends_with(']')) {
        host = host.substr(1, host.size() - 2);
    }
    asio::error_code error;
    const auto address = asio::ip::make_address(host, error);
    if (error) {
        return std::nullopt;
    }
    return tcp::endpoint(address, static_cast<std::uint16_t>(std::stoi(text.substr(colon + 1))));
}

tcp::acceptor listenOn(asio::io_context& io, const std::string& address) {
    try {
        return {io, endpointFrom(address).value()};
    } catch (const std::system_error& error) {
        throw Failure(ExitStatus::USAGE, "cannot listen on " + address + ": " +
                                             error.code().message() +
                                             ": choose another address or port with --listen");
    }
}

tcp::resolver::results_type lookUp(asio::io_context& io, const Session& session) {
    asio::error_code error;
    auto endpoints = tcp::resolver(io).resolve(session.host, std::to_string(session.port),
                                               tcp::resolver::numeric_service, error);
    if (error) {
        throw Failure(ExitStatus::CANNOT_CONNECT,
                      "cannot find " + session.host + ": " + error.message() + ": check --host");
    }
    return endpoints;
}

std::chrono::steady_clock::duration durationOf(double seconds) {
    return std::chrono::duration_cast<std::chrono::steady_clock::duration>(
        std::chrono::duration<double>(seconds));
}

/// What is sent to an address of this machine comes from there. Nothing is sent.
bool isOfThisMachine(asio::io_context& io, const asio::ip::address& address) {
    asio::error_code error;
    asio::ip::udp::socket socket(io);
    socket.connect({address, 1}, error);
    return address.is_loopback() || (!error && socket.local_endpoint(error).address() == address);
}

/// Each client would be followed by one of its own, without end.
void requireOther(asio::io_context& io, const tcp::resolver::results_type& service,
                  const tcp::endpoint& listening) {
    for (const auto& entry : service) {
        const tcp::endpoint& endpoint = entry.endpoint();
        const bool isSameHost =
            endpoint.address() == listening.address() ||
            (listening.address().is_unspecified() && isOfThisMachine(io, endpoint.address()));
        if (isSameHost && endpoint.port() == listening.port()) {
            throw Failure(
                ExitStatus::USAGE,
                "cannot trace itself: give the service's port with --port, and another one "
                "with --listen");
        }
    }
}

std::string textOf(const tcp::endpoint& endpoint) {
    std::ostringstream text;
    text << endpoint;
    return text.str();
}

}  // namespace

Trace::Trace(const Session& session, const std::string& listen, bool passesAll)
    : _session(session),
      _log(session),
      // A descriptor of its own, as it is closed with the io_context.
      _interruption(_io, ::dup(_interrupt.descriptor())),
      _acceptor(listenOn(_io, listen)),
      _retry(_io),
      _context{_log, lookUp(_io, session), session.peer(), durationOf(session.timeoutSeconds),
               passesAll} {
    requireOther(_io, _context.endpoints, _acceptor.local_endpoint());
}

void Trace::run() {
    _interruption.async_wait(asio::posix::stream_descriptor::wait_read,
                             [this](const auto& /*error*/) { _io.stop(); });
    _log.listening(textOf(_acceptor.local_endpoint()));
    _accept();
    while (_session.out && _io.run_one() > 0) {
    }
    _log.sum();
}

void Trace::_accept() {
    _acceptor.async_accept([this](const asio::error_code& error, tcp::socket socket) {
        if (!error) {
            std::make_shared<TraceConnection>(std::move(socket), _context)->start();
            _accept();
            return;
        }
        _session.note("cannot take a connection: " + error.message());
        _retry.expires_after(ACCEPT_RETRY);
        _retry.async_wait([this](const auto& /*aborted*/) { _accept(); });
    });
}

std::string checkListenAddress(const std::string& text) {
    return endpointFrom(text)
               ? ""
               : "\"" + text + "\" is not ADDRESS:PORT, such as 0.0.0.0:3452 or [::1]:3452";
}

}  // namespace reticlectl
