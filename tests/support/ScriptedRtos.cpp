#include "tests/support/ScriptedRtos.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <chrono>
#include <stdexcept>

#include "tests/support/Patience.h"
#include "tests/support/Ports.h"
#include "tests/support/Sockets.h"

namespace {

bool isAcceptable(const FileDescriptor& listener, std::chrono::milliseconds bound) {
    pollfd waited{listener.get(), POLLIN, 0};
    return poll(&waited, 1, static_cast<int>(bound.count())) > 0;
}

Connection acceptFrom(const FileDescriptor& listener) {
    if (!isAcceptable(listener, PATIENCE)) {
        throw std::runtime_error("the service does not connect to the RTOS");
    }
    FileDescriptor socket(accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC), "accept");
    // Each answer leaves at once, as a segment of its own.
    const int on = 1;
    setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return Connection(std::move(socket));
}

}  // namespace

ScriptedRtos::ScriptedRtos() : _listener(sockets::listenOn(RTOS_PORT)) {}

std::string ScriptedRtos::receiveRequest() {
    constexpr std::string_view END = "\n]";
    std::string request;
    while (!request.ends_with(END)) {
        const std::string byte = link().receive(1);
        if (byte.empty()) {
            break;
        }
        request += byte;
    }
    return request;
}

std::string ScriptedRtos::receive(std::size_t count) {
    return link().receive(count);
}

void ScriptedRtos::answer(std::string_view bytes) {
    link().send(bytes);
}

std::string ScriptedRtos::exchange(std::string_view answer) {
    std::string request = receiveRequest();
    this->answer(answer);
    return request;
}

Connection& ScriptedRtos::link() {
    if (!_link.isOpen()) {
        _link = acceptFrom(_listener);
    }
    return _link;
}

bool ScriptedRtos::isCalled() const {
    return isAcceptable(_listener, std::chrono::milliseconds::zero());
}

bool ScriptedRtos::isQuiet() const {
    return _link.isOpen() ? _link.isQuiet() : !isCalled();
}
