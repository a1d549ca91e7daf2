#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <string_view>

#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>

#include "tools/reticlectl/trace/ReplyReader.h"
#include "tools/reticlectl/trace/RequestCutter.h"
#include "tools/reticlectl/trace/TraceLog.h"

namespace reticlectl {

/// What the connections of a trace have in common.
struct TraceContext {
    TraceLog& log;
    /// Of the service.
    asio::ip::tcp::resolver::results_type endpoints;
    /// The same as messages tell it.
    std::string service;
    /// How long silence lasts before it is told.
    std::chrono::steady_clock::duration timeout;
    /// Also requests that would end the service.
    bool passesAll;
    /// Requests of all connections whose replies are awaited.
    std::size_t underWay = 0;
};

/// One client and its connection to the service: passes on what either sends, unchanged, and never
/// reads on before that is done, so that each side feels how slow the other is.
///
/// Owns itself through its pending operations and ends with either side, or with the io_context.
/// Runs on the io_context's thread.
class TraceConnection : public std::enable_shared_from_this<TraceConnection> {
public:
    /// \param context outlives the connection.
    TraceConnection(asio::ip::tcp::socket client, TraceContext& context);
    TraceConnection(const TraceConnection&) = delete;
    TraceConnection& operator=(const TraceConnection&) = delete;
    ~TraceConnection();

    /// Connects to the service and begins.
    void start();

private:
    using Clock = std::chrono::steady_clock;

    struct Pending {
        std::string action;
        Clock::time_point since;
    };

    void _onConnect(const asio::error_code& error);
    void _readClient();
    void _onClientEnd(const asio::error_code& error);
    void _passRequests();
    [[nodiscard]] bool _judge(const RequestCutter::Piece& piece);
    [[nodiscard]] bool _judgeFrame(const RequestCutter::Piece& piece);
    void _await(const std::string& action);
    void _readService();
    void _followReplies(std::string_view bytes);
    void _noteReply();
    void _onServiceEnd();
    void _watchTime();
    void _onTime();
    [[nodiscard]] bool _isToTellIncomplete() const;
    void _tellIncomplete();
    [[nodiscard]] std::string _withinTimeout() const;
    void _dropPending();
    void _end(const std::string& by);

    static constexpr std::size_t READ_BYTES = std::size_t{64} << 10U;

    TraceContext& _context;
    std::size_t _number;
    asio::ip::tcp::socket _client;
    asio::ip::tcp::socket _service;
    asio::steady_timer _timer;
    std::array<char, READ_BYTES> _fromClient{};
    std::array<char, READ_BYTES> _fromService{};
    RequestCutter _requests;
    ReplyReader _replies;
    std::string _toService;  ///< on its way
    std::deque<Pending> _pending;
    Clock::time_point _lastFromClient;
    bool _isConnecting = true;
    bool _isIncompleteTold = false;
    bool _isOutOfStep = false;  ///< since a header was refused
    bool _hasClientEnded = false;
    bool _hasEnded = false;
};

}  // namespace reticlectl
