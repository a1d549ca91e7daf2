#include "tests/support/Ports.h"

#include <fstream>
#include <functional>
#include <limits>
#include <string>

namespace {

constexpr int HEXADECIMAL = 16;
constexpr auto LISTENING = "0A";
constexpr auto CONNECTING = "02";

std::uint16_t portOf(const std::string& address) {
    return static_cast<std::uint16_t>(
        std::stoul(address.substr(address.find(':') + 1), nullptr, HEXADECIMAL));
}

// A line of /proc/net/tcp: "0: 0100007F:0D61 00000000:0000 0A ...": number, local and remote
// address with port, state; all but the number in hexadecimal.
bool hasSocket(const std::function<bool(std::uint16_t local, std::uint16_t remote,
                                        const std::string& state)>& isMeant) {
    std::ifstream table("/proc/net/tcp");
    table.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    std::string number;
    std::string local;
    std::string remote;
    std::string state;
    while (table >> number >> local >> remote >> state) {
        table.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
        if (isMeant(portOf(local), portOf(remote), state)) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool isListening(std::uint16_t port) {
    return hasSocket([port](std::uint16_t local, std::uint16_t, const std::string& state) {
        return state == LISTENING && local == port;
    });
}

bool isBeingCalled(std::uint16_t port) {
    return hasSocket([port](std::uint16_t, std::uint16_t remote, const std::string& state) {
        return state == CONNECTING && remote == port;
    });
}
