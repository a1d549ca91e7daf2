#include "bench/common/RtosLink.h"

#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

#include "bench/common/Sockets.h"

namespace reticled::bench {

RtosLink::~RtosLink() {
    if (_connection >= 0) {
        close(_connection);
    }
}

std::string_view RtosLink::exchange(std::string_view request) {
    if (_connection < 0) {
        _connection = connectTo(RTOS_PORT);
    }
    check(static_cast<int>(send(_connection, request.data(), request.size(), MSG_NOSIGNAL)),
          "send to the RTOS");
    const int received =
        check(static_cast<int>(recv(_connection, _answer.data(), _answer.size(), 0)),
              "recv from the RTOS");
    if (received == 0) {
        throw std::runtime_error("the RTOS has gone");
    }
    return {_answer.data(), static_cast<std::size_t>(received)};
}

}  // namespace reticled::bench
