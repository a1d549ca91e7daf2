#include "tools/reticlectl/doctor/TcpTable.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>

namespace reticlectl {

namespace {

constexpr int HEXADECIMAL = 16;
constexpr int DECIMAL = 10;
constexpr unsigned ESTABLISHED = 0x01;
constexpr unsigned LISTEN = 0x0A;

/// The number with which `text` begins; what follows it stays in `text`.
template <class Number>
bool take(std::string_view& text, Number& number, int base) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return error == std::errc();
}

/// "ADDRESS:PORT".
bool readEndpoint(const std::string& field, std::string& address, std::uint16_t& port) {
    const std::size_t colon = field.find(':');
    if (colon == std::string::npos) {
        return false;
    }
    address = field.substr(0, colon);
    std::string_view number = std::string_view(field).substr(colon + 1);
    return take(number, port, HEXADECIMAL);
}

std::optional<TcpSocket> readLine(const std::string& line) {
    enum Field {
        SLOT,
        LOCAL,
        REMOTE,
        STATE,
        QUEUES,
        TIMER,
        RETRANSMISSIONS,
        UID,
        PROBES,
        INODE,
        COUNT
    };
    std::istringstream words(line);
    std::array<std::string, COUNT> fields;
    for (std::string& field : fields) {
        words >> field;
    }
    TcpSocket socket;
    std::string_view state = fields[STATE];
    std::string_view queues = fields[QUEUES];
    queues.remove_prefix(std::min(queues.find(':') + 1, queues.size()));
    std::string_view uid = fields[UID];
    std::string_view inode = fields[INODE];
    const bool isSocket = readEndpoint(fields[LOCAL], socket.localAddress, socket.localPort) &&
                          readEndpoint(fields[REMOTE], socket.remoteAddress, socket.remotePort) &&
                          take(state, socket.state, HEXADECIMAL) &&
                          take(queues, socket.receiveQueue, HEXADECIMAL) &&
                          take(uid, socket.uid, DECIMAL) && take(inode, socket.inode, DECIMAL);
    return isSocket ? std::optional(socket) : std::nullopt;
}

/// As the tables write it: in the machine's order of bytes.
std::string hexadecimal(std::uint32_t word) {
    constexpr std::size_t DIGITS = 8;
    std::array<char, DIGITS> digits{};
    auto* const end = std::to_chars(digits.begin(), digits.end(), word, HEXADECIMAL).ptr;
    std::string text(digits.begin(), end);
    for (char& digit : text) {
        digit = digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit;
    }
    return std::string(DIGITS - text.size(), '0') + text;
}

/// Whether `address` is 127.0.0.1, in either table.
bool isLoopback(const std::string& address) {
    constexpr std::uint32_t MAPPED = 0xFFFF;
    const std::string loopback = hexadecimal(htonl(INADDR_LOOPBACK));
    return address == loopback ||
           address == std::string(loopback.size() * 2, '0') + hexadecimal(htonl(MAPPED)) + loopback;
}

}  // namespace

bool TcpSocket::isListener() const {
    return state == LISTEN;
}

bool TcpSocket::isEstablished() const {
    return state == ESTABLISHED;
}

bool TcpSocket::takesLoopback() const {
    const bool isAny = localAddress.find_first_not_of('0') == std::string::npos;
    return isAny || isLoopback(localAddress);
}

bool TcpSocket::leadsToLoopback() const {
    return isLoopback(remoteAddress);
}

std::vector<TcpSocket> parseTcpTable(const std::string& text) {
    std::vector<TcpSocket> sockets;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (auto socket = readLine(line)) {
            sockets.push_back(std::move(*socket));
        }
    }
    return sockets;
}

std::vector<TcpSocket> readTcpTables() {
    std::vector<TcpSocket> sockets;
    for (const char* table : {"/proc/net/tcp", "/proc/net/tcp6"}) {
        std::ostringstream text;
        text << std::ifstream(table).rdbuf();
        auto more = parseTcpTable(text.str());
        sockets.insert(sockets.end(), std::make_move_iterator(more.begin()),
                       std::make_move_iterator(more.end()));
    }
    return sockets;
}

}  // namespace reticlectl
