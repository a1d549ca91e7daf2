#pragma once

#include <array>
#include <iosfwd>
#include <memory>
#include <string>

#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>

#include "simulator/link/Delivery.h"
#include "simulator/link/RequestSplitter.h"

namespace sim {

/// One connection of the service: reads requests, answers them one after the other in their order.
///
/// Owns itself through its pending operations and ends with the peer, with a delivery that says so,
/// or with the io_context. Runs on the io_context's thread.
class Connection : public std::enable_shared_from_this<Connection> {
public:
    /// \param exchange asked for each request
    /// \param log gets a line when the peer leaves amid a request; outlives the connection
    Connection(asio::ip::tcp::socket socket, ExchangeFunction exchange, std::ostream& log);

    void start() { _read(); }

    /// Ends the connection, whatever it is at.
    void close();

private:
    void _read();
    void _onRead(const asio::error_code& error, std::size_t size);
    void _answerNext();
    void _wait(std::chrono::milliseconds time, void (Connection::*then)());
    void _sendFirst();
    void _waitForGap();
    void _sendRest();
    void _send(std::size_t size, void (Connection::*then)());
    void _finish();

    static constexpr std::size_t READ_BYTES = std::size_t{16} << 10U;

    asio::ip::tcp::socket _socket;
    asio::steady_timer _timer;
    ExchangeFunction _exchange;
    std::ostream& _log;
    std::array<char, READ_BYTES> _received{};
    RequestSplitter _requests;
    Delivery _delivery;  ///< of the current exchange; `bytes` is what is still to send
};

}  // namespace sim
