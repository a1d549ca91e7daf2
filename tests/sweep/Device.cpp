#include "tests/sweep/Device.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <array>
#include <string_view>
#include <utility>

#include "tests/support/Patience.h"
#include "tests/support/Ports.h"
#include "tests/support/Sockets.h"

namespace {

// All requests are arrays that close on a line of their own.
constexpr std::string_view REQUEST_END = "\n]";
constexpr std::string_view DATA_NAME = "a:/new_reticle_data";
constexpr auto DIGITS = "0123456789";

}  // namespace

Device::Device(const FlashFiles& flash)
    : _flash(flash),
      _listener(sockets::listenOn(RTOS_PORT)),
      _stop(eventfd(0, EFD_CLOEXEC), "eventfd"),
      _thread([this] { _serve(); }) {}

Device::~Device() {
    eventfd_write(_stop.get(), 1);
    _thread.join();
}

void Device::nameList(const std::string& file) {
    const std::lock_guard lock(_mutex);
    _answerText = R"([{"param":")" + file + R"(","ret_val":0}])";
}

std::vector<std::string> Device::takeRequests() {
    static_cast<void>(eventually([this] { return answers() >= 0; }));
    const std::lock_guard lock(_mutex);
    if (!_received.empty()) {
        _requests.push_back(std::exchange(_received, {}));
    }
    return std::exchange(_requests, {});
}

long Device::answers() {
    const std::lock_guard lock(_mutex);
    pollfd asked = _source();
    return poll(&asked, 1, 0) == 0 ? _answers : -1;
}

// A new connection is taken when the old one has ended.
pollfd Device::_source() const {
    return {_link.isOpen() ? _link.get() : _listener.get(), POLLIN, 0};
}

void Device::_serve() {
    for (;;) {
        std::array<pollfd, 2> waited{_source(), pollfd{_stop.get(), POLLIN, 0}};
        poll(waited.data(), waited.size(), -1);
        if (waited[1].revents != 0) {
            return;
        }
        const std::lock_guard lock(_mutex);
        ++_answers;
        if (_link.isOpen()) {
            _receive();
        } else {
            _link = FileDescriptor(accept4(_listener.get(), nullptr, nullptr, SOCK_CLOEXEC),
                                   "accept the service");
        }
    }
}

void Device::_receive() {
    std::array<char, 4096> bytes{};
    const ssize_t count = recv(_link.get(), bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (count <= 0) {
        _link.close();
        return;
    }
    _received.append(bytes.data(), static_cast<std::size_t>(count));
    if (_received.ends_with(REQUEST_END)) {
        _answer(std::exchange(_received, {}));
    }
}

void Device::_answer(const std::string& request) {
    std::string seen = request;
    if (const std::size_t name = seen.find(DATA_NAME); name != std::string::npos) {
        const std::size_t number = name + DATA_NAME.size();
        const std::size_t end = seen.find_first_not_of(DIGITS, number);
        seen += _flash.read("new_reticle_data" + seen.substr(number, end - number));
        seen.erase(number, end - number);
    }
    _requests.push_back(seen);
    send(_link.get(), _answerText.data(), _answerText.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
}
