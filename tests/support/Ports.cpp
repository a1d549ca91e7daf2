#include "tests/support/Ports.h"

#include <fstream>
#include <limits>
#include <string>

namespace {

constexpr int HEXADECIMAL = 16;

}  // namespace

// A line of /proc/net/tcp: "0: 0100007F:0D61 00000000:0000 0A ...": number, local and remote
// address with port, state; all but the number in hexadecimal.
bool isListening(std::uint16_t port) {
    constexpr auto LISTEN_STATE = "0A";
    std::ifstream table("/proc/net/tcp");
    table.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    std::string number;
    std::string local;
    std::string remote;
    std::string state;
    while (table >> number >> local >> remote >> state) {
        table.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
        const std::string localPort = local.substr(local.find(':') + 1);
        if (state == LISTEN_STATE && std::stoul(localPort, nullptr, HEXADECIMAL) == port) {
            return true;
        }
    }
    return false;
}
