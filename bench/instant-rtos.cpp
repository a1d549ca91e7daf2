// instant-rtos: an RTOS that accepts every command at once. The list file and the reticle files are
// somebody else's business. Serves one connection, as a device does.
#include <sys/socket.h>

#include <array>
#include <iostream>
#include <string_view>

#include "bench/common/Sockets.h"

int main() {
    using namespace reticled::bench;
    constexpr std::string_view listMessage = "\"msg_id\" : 76";
    constexpr std::string_view listAnswer = R"([{"param":"list","ret_val":0}])";
    constexpr std::string_view otherAnswer = R"([{"ret_val":0}])";
    constexpr std::size_t longestRequestBytes = 4096;
    const int listener = listenOn(RTOS_PORT);
    std::cout << "listening" << std::endl;  // NOLINT(performance-avoid-endl): the starter waits
    const int service = acceptFrom(listener);
    std::array<char, longestRequestBytes> buffer{};
    for (;;) {
        const ssize_t size = recv(service, buffer.data(), buffer.size(), 0);
        if (size <= 0) {
            return 0;
        }
        const std::string_view request(buffer.data(), static_cast<std::size_t>(size));
        const std::string_view answer =
            request.find(listMessage) == std::string_view::npos ? otherAnswer : listAnswer;
        check(static_cast<int>(send(service, answer.data(), answer.size(), MSG_NOSIGNAL)), "send");
    }
}
