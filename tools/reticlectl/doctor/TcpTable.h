#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace reticlectl {

/// One socket of the kernel's tables, /proc/net/tcp and tcp6.
struct TcpSocket {
    /// Addresses as the tables have them.
    std::string localAddress;
    std::uint16_t localPort = 0;
    std::string remoteAddress;
    std::uint16_t remotePort = 0;
    unsigned state = 0;
    /// Of a listener: how many connections wait to be accepted.
    unsigned long receiveQueue = 0;
    unsigned uid = 0;
    unsigned long inode = 0;

    [[nodiscard]] bool isListener() const;
    [[nodiscard]] bool isEstablished() const;
    /// Whether a listener takes what is sent to 127.0.0.1.
    [[nodiscard]] bool takesLoopback() const;
    /// Whether the peer is at 127.0.0.1.
    [[nodiscard]] bool leadsToLoopback() const;
};

/// \param text of one of the tables. \return its sockets; lines that are none are left out.
[[nodiscard]] std::vector<TcpSocket> parseTcpTable(const std::string& text);

/// The sockets of this machine, of both tables.
[[nodiscard]] std::vector<TcpSocket> readTcpTables();

}  // namespace reticlectl
