#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/steady_timer.hpp>

#include "simulator/control/ControlConnection.h"
#include "simulator/events/EventStream.h"

namespace sim {

/// Takes commands for the running simulator on a Unix socket, which only its own user may use.
///
/// A client sends one command, a JSON array of its words on one line, and gets one line: an object,
/// which has "error", a text for people, where the command was refused. After "events" it gets each
/// event on a line of its own until it leaves; one that does not read misses events, which their
/// numbers show. All of it happens on the thread that runs the io_context.
class ControlServer {
public:
    /// Listens at once; clients wait until `start`. The socket of a simulator that is gone is
    /// replaced.
    /// \param io outlives the server
    /// \throws std::runtime_error, naming `path`, where somebody listens, something else is, or
    ///         no socket can be made.
    ControlServer(asio::io_context& io, const std::filesystem::path& path);

    /// Removes the socket, unless another has taken its place.
    ~ControlServer();
    ControlServer(const ControlServer&) = delete;
    ControlServer& operator=(const ControlServer&) = delete;

    /// Takes clients from now on.
    /// \param command carries out what is asked for
    /// \param events followed as long as this server lives
    void start(CommandFunction command, EventStream& events);

private:
    void _accept();
    void _tell(const Event& event);

    std::filesystem::path _path;
    asio::local::stream_protocol::acceptor _acceptor;
    asio::steady_timer _retry;
    ino_t _inode = 0;
    CommandFunction _command;
    std::vector<std::weak_ptr<ControlConnection>> _connections;
};

}  // namespace sim
