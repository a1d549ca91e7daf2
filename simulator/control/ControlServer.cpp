#include "simulator/control/ControlServer.h"

#include <sys/socket.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "simulator/events/EventJson.h"

namespace fs = std::filesystem;

namespace sim {

namespace {

using Local = asio::local::stream_protocol;

constexpr mode_t OWNER_ONLY = S_IRUSR | S_IWUSR;
/// After a failed accept, for want of descriptors say: at once it would only fail again.
constexpr std::chrono::milliseconds ACCEPT_RETRY{100};

/// \throws std::system_error about the call that has just failed.
[[noreturn]] void throwErrno() {
    throw std::system_error(errno, std::system_category());
}

/// Whether nobody listens at the socket `path` any more.
bool isStale(asio::io_context& io, const fs::path& path) {
    Local::socket probe(io, Local());
    // A listener whose queue is full must not hold us up.
    probe.native_non_blocking(true);
    const Local::endpoint endpoint(path.string());
    const int result =
        ::connect(probe.native_handle(), endpoint.data(), static_cast<socklen_t>(endpoint.size()));
    if (result == 0 || errno == EAGAIN) {
        return false;
    }
    if (errno != ECONNREFUSED) {
        throwErrno();
    }
    return true;
}

void makeWay(asio::io_context& io, const fs::path& path) {
    const fs::file_status status = fs::symlink_status(path);
    if (!fs::exists(status)) {
        return;
    }
    if (!fs::is_socket(status)) {
        throw std::runtime_error("it is there already, and no socket");
    }
    if (!isStale(io, path)) {
        throw std::runtime_error("it is in use");
    }
    fs::remove(path);
}

Local::acceptor listenAt(asio::io_context& io, const fs::path& path) {
    try {
        const Local::endpoint endpoint(path.string());
        makeWay(io, path);
        Local::acceptor acceptor(io, Local());
        // On Linux the file takes the mode that the socket has when it is bound.
        if (fchmod(acceptor.native_handle(), OWNER_ONLY) != 0) {
            throwErrno();
        }
        acceptor.bind(endpoint);
        acceptor.listen();
        return acceptor;
    } catch (const std::system_error& error) {
        throw std::runtime_error("cannot listen at " + path.string() + ": " +
                                 error.code().message());
    } catch (const std::runtime_error& error) {
        throw std::runtime_error("cannot listen at " + path.string() + ": " + error.what());
    }
}

/// The file's number; 0 where there is none.
ino_t inodeOf(const fs::path& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

}  // namespace

ControlServer::ControlServer(asio::io_context& io, const fs::path& path)
    : _path(path), _acceptor(listenAt(io, path)), _retry(io), _inode(inodeOf(path)) {}

ControlServer::~ControlServer() {
    if (inodeOf(_path) == _inode) {
        std::error_code ignored;
        fs::remove(_path, ignored);
    }
}

void ControlServer::start(CommandFunction command, EventStream& events) {
    _command = std::move(command);
    events.subscribe([this](const Event& event) { _tell(event); });
    _accept();
}

void ControlServer::_accept() {
    _acceptor.async_accept([this](const asio::error_code& error, Local::socket socket) {
        if (error) {
            _retry.expires_after(ACCEPT_RETRY);
            _retry.async_wait([this](const auto& /*error*/) { _accept(); });
            return;
        }
        std::erase_if(_connections, [](const auto& connection) { return connection.expired(); });
        const auto connection = std::make_shared<ControlConnection>(std::move(socket), _command);
        _connections.push_back(connection);
        connection->start();
        _accept();
    });
}

void ControlServer::_tell(const Event& event) {
    SharedLine line;
    for (const std::weak_ptr<ControlConnection>& weak : _connections) {
        const std::shared_ptr<ControlConnection> connection = weak.lock();
        if (connection && connection->isFollowing()) {
            if (!line) {
                line = std::make_shared<const std::string>(eventJson(event) + '\n');
            }
            connection->tell(line);
        }
    }
}

}  // namespace sim
