#pragma once

#include <string>

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/steady_timer.hpp>

#include "tools/reticlectl/commands/Session.h"
#include "tools/reticlectl/terminal/InterruptSignal.h"
#include "tools/reticlectl/trace/TraceConnection.h"
#include "tools/reticlectl/trace/TraceLog.h"

namespace reticlectl {

/// Stands between clients and the service and prints what goes through, until Ctrl-C.
class Trace {
public:
    /// Listens at once. The service need not be there. \param session must outlive this object.
    /// \param listen "ADDRESS:PORT", an IPv6 address in brackets.
    /// \throws Failure where it cannot listen there, or the service's host has no address or is this
    ///         very trace.
    Trace(const Session& session, const std::string& listen, bool passesAll);

    /// Returns at Ctrl-C, or where nobody takes the output any more.
    void run();

private:
    void _accept();

    const Session& _session;
    InterruptSignal _interrupt;
    TraceLog _log;
    asio::io_context _io;
    asio::posix::stream_descriptor _interruption;
    asio::ip::tcp::acceptor _acceptor;
    asio::steady_timer _retry;
    TraceContext _context;
};

/// \return what is wrong with `text` as "ADDRESS:PORT", nothing when it is one.
[[nodiscard]] std::string checkListenAddress(const std::string& text);

}  // namespace reticlectl
