#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "reticle-client/ReticleClient.h"
#include "tools/reticlectl/doctor/Finding.h"
#include "tools/reticlectl/doctor/SocketHolders.h"
#include "tools/reticlectl/doctor/TcpTable.h"

namespace reticlectl {

constexpr std::uint16_t SERVICE_PORT = reticle::ReticleClient::DEFAULT_PORT;
constexpr std::uint16_t RTOS_PORT = 3425;

/// The sockets that listen on a port.
[[nodiscard]] std::vector<TcpSocket> listenersOn(std::uint16_t port,
                                                 const std::vector<TcpSocket>& sockets);

/// Whether one service, and nobody else, takes clients. \param user the listener's, by name.
[[nodiscard]] Finding judgeServicePort(const std::vector<TcpSocket>& listeners,
                                       const SocketHolders& holders, const std::string& user);

/// Whether the RTOS can be reached, by what the kernel knows: the RTOS is made for one connection,
/// the service's, so nobody else makes one to try. \param sockets of the machine.
[[nodiscard]] Finding judgeRtosPort(const std::vector<TcpSocket>& sockets);

}  // namespace reticlectl
