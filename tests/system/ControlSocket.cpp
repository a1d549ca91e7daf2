#include "tests/system/ControlSocket.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <system_error>

namespace {

FileDescriptor connectTo(const std::string& path) {
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket");
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(static_cast<char*>(address.sun_path), sizeof address.sun_path - 1);
    if (connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) < 0) {
        throw std::system_error(errno, std::generic_category(), "connect to " + path);
    }
    return socket;
}

}  // namespace

ControlSocket::ControlSocket(const std::string& path) : _connection(connectTo(path)) {}

std::string ControlSocket::receiveLine() {
    constexpr std::size_t READ_BYTES = 65536;
    std::size_t end = 0;
    while ((end = _received.find('\n')) == std::string::npos) {
        const std::string bytes = _connection.receiveOnce(READ_BYTES);
        if (bytes.empty()) {
            return "";
        }
        _received += bytes;
    }
    const std::string line = _received.substr(0, end);
    _received.erase(0, end + 1);
    return line;
}

std::string ControlSocket::ask(const std::string& path, const std::string& command) {
    ControlSocket socket(path);
    socket.send(command);
    return socket.receiveLine();
}
