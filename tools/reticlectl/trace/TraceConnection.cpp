#include "tools/reticlectl/trace/TraceConnection.h"

#include <algorithm>
#include <optional>
#include <sstream>
#include <utility>

#include <asio/buffer.hpp>
#include <asio/connect.hpp>
#include <asio/write.hpp>

#include "client/FrameCheck.h"
#include "client/FrameFormat.h"
#include "tools/reticlectl/commands/NumberArguments.h"
#include "tools/reticlectl/trace/HeaderCheck.h"

namespace reticlectl {

namespace {

using asio::ip::tcp;
using Kind = RequestCutter::Piece::Kind;

/// Of requests that wait in the service, of all clients together.
constexpr std::size_t QUEUE_LENGTH = 15;

/// Of a client that sends on and on, most requests have no reply: no more than these are awaited.
constexpr std::size_t PENDING_LIMIT = 1000;

constexpr const char* OPEN_ANEW = "the connection is out of step from here on: open a new one";

std::string peerOf(const tcp::socket& socket) {
    asio::error_code error;
    std::ostringstream text;
    text << socket.remote_endpoint(error);
    return text.str();
}

void sendAtOnce(tcp::socket& socket) {
    asio::error_code ignored;
    socket.set_option(tcp::no_delay(true), ignored);
}

std::string ofAll(std::size_t count, std::size_t all) {
    return std::to_string(count) + " of " + std::to_string(all) + " bytes";
}

/// Of a piece that is no frame.
reticle::Mistake mistakeOf(const RequestCutter::Piece& piece) {
    if (const auto mistake = findHeaderMistake(piece.bytes)) {
        return {mistake->what, mistake->remedy + "; " + OPEN_ANEW};
    }
    return {"header cut short: " + ofAll(piece.bytes.size(), reticle::FRAME_HEADER_BYTES),
            "send it whole before you close"};
}

}  // namespace

TraceConnection::TraceConnection(tcp::socket client, TraceContext& context)
    : _context(context),
      _number(context.log.connected(peerOf(client))),
      _client(std::move(client)),
      _service(_client.get_executor()),
      _timer(_client.get_executor()) {}

TraceConnection::~TraceConnection() {
    _dropPending();
}

void TraceConnection::start() {
    sendAtOnce(_client);
    asio::async_connect(_service, _context.endpoints,
                        [self = shared_from_this()](const auto& error, const auto& /*endpoint*/) {
                            self->_onConnect(error);
                        });
    _timer.expires_after(_context.timeout);
    _timer.async_wait([self = shared_from_this()](const auto& error) {
        if (!error && self->_isConnecting) {
            asio::error_code ignored;
            self->_service.close(ignored);
        }
    });
}

void TraceConnection::_onConnect(const asio::error_code& error) {
    _isConnecting = false;
    _timer.cancel();
    if (error) {
        const std::string reason = error == asio::error::operation_aborted
                                       ? "no answer" + _withinTimeout()
                                       : error.message();
        _context.log.remark(_number,
                            {"cannot connect to " + _context.service + ": " + reason,
                             "check that the reticle service runs there, and --host and --port"});
        _end("the trace");
        return;
    }
    sendAtOnce(_service);
    _readClient();
    _readService();
}

void TraceConnection::_readClient() {
    _client.async_read_some(asio::buffer(_fromClient),
                            [self = shared_from_this()](const auto& error, std::size_t size) {
                                if (error) {
                                    self->_onClientEnd(error);
                                    return;
                                }
                                self->_lastFromClient = Clock::now();
                                self->_isIncompleteTold = false;
                                self->_requests.feed({self->_fromClient.data(), size});
                                self->_passRequests();
                            });
}

void TraceConnection::_onClientEnd(const asio::error_code& error) {
    if (_hasEnded) {
        return;
    }
    if (error != asio::error::eof) {
        _end("the client, by a reset");
        return;
    }
    _hasClientEnded = true;
    _requests.end();
    _passRequests();
}

void TraceConnection::_passRequests() {
    while (std::optional<RequestCutter::Piece> piece = _requests.next()) {
        if (_judge(*piece)) {
            _toService = std::move(piece->bytes);
            // Where it fails the service is gone, which the end of its replies tells.
            asio::async_write(_service, asio::buffer(_toService),
                              [self = shared_from_this()](const auto& error, std::size_t /*size*/) {
                                  if (!error) {
                                      self->_toService = {};
                                      self->_passRequests();
                                  }
                              });
            return;
        }
    }
    _watchTime();
    if (!_hasClientEnded) {
        _readClient();
        return;
    }
    if (!_pending.empty()) {
        _context.log.remark(
            _number,
            {"the client has ended its side before the reply to " + _pending.front().action,
             "keep the connection open in both directions until the reply is there: at its "
             "half end the service closes it"});
    }
    asio::error_code ignored;
    _service.shutdown(tcp::socket::shutdown_send, ignored);
}

/// \return whether the piece is passed on.
bool TraceConnection::_judge(const RequestCutter::Piece& piece) {
    if (piece.kind == Kind::FRAME || piece.kind == Kind::CUT_FRAME) {
        _isOutOfStep = false;
        return _judgeFrame(piece);
    }
    if (!_isOutOfStep) {
        _context.log.noFrame(_number, piece.bytes);
        _context.log.remark(_number, mistakeOf(piece));
    }
    // What follows a header that is refused is most likely none either, and not told again.
    _isOutOfStep = true;
    return true;
}

bool TraceConnection::_judgeFrame(const RequestCutter::Piece& piece) {
    using Outcome = RequestCheck::Outcome;
    const std::string_view body = piece.body();
    RequestCheck check = RequestCheck::of(body);
    if (piece.kind == Kind::CUT_FRAME) {
        check.mistakes.insert(
            check.mistakes.begin(),
            {"body cut short: " + ofAll(body.size(), reticle::announcedBodyBytes(piece.bytes)),
             "send it whole before you close, and write its own length into the header"});
    }
    const bool isPassedOn = check.outcome != Outcome::ENDS_SERVICE || _context.passesAll;
    _context.log.request(_number, check, body, isPassedOn);
    if (check.outcome == Outcome::ANSWERED) {
        _await(check.action);
    }
    return isPassedOn;
}

void TraceConnection::_await(const std::string& action) {
    if (_pending.size() == PENDING_LIMIT) {
        return;
    }
    _pending.push_back({action, Clock::now()});
    ++_context.underWay;
    if (_context.underWay == QUEUE_LENGTH + 1) {
        _context.log.remark(_number,
                            {std::to_string(_context.underWay) + " requests are under way, and " +
                                 std::to_string(QUEUE_LENGTH) + " may wait in the service",
                             "wait for a reply before you send the next request: there is no "
                             "reply to those that find no place"});
    }
}

void TraceConnection::_readService() {
    _service.async_read_some(asio::buffer(_fromService), [self = shared_from_this()](
                                                             const auto& error, std::size_t size) {
        if (error) {
            self->_onServiceEnd();
            return;
        }
        self->_followReplies({self->_fromService.data(), size});
        asio::async_write(self->_client, asio::buffer(self->_fromService, size),
                          [self](const auto& failure, std::size_t /*size*/) {
                              if (failure) {
                                  self->_end("the client");
                              } else {
                                  self->_readService();
                              }
                          });
    });
}

void TraceConnection::_followReplies(std::string_view bytes) {
    while (!bytes.empty()) {
        switch (_replies.read(bytes)) {
            case ReplyReader::Event::REPLY:
                _noteReply();
                break;
            case ReplyReader::Event::NO_FRAME: {
                const auto mistake = reticle::findSyncMistake(_replies.header());
                _context.log.remark(_number, {"what " + _context.service + " sends is no frame" +
                                                  (mistake ? " (" + mistake->what + ")" : ""),
                                              "check --host and --port"});
                break;
            }
            case ReplyReader::Event::NONE:
                break;
        }
    }
}

void TraceConnection::_noteReply() {
    std::optional<Milliseconds> time;
    if (!_pending.empty()) {
        time = Clock::now() - _pending.front().since;
        _pending.pop_front();
        --_context.underWay;
        _watchTime();
    }
    _context.log.reply(_number, _replies.size(), _replies.text(), time);
}

void TraceConnection::_onServiceEnd() {
    if (_hasEnded) {
        return;
    }
    if (_hasClientEnded) {
        _end("the client");
        return;
    }
    _context.log.remark(_number,
                        {"the service has closed the connection",
                         "look whether it runs, and into its log; it also closes where a client "
                         "takes nothing of a reply for 30 s"});
    _end("the service");
}

/// Waits for the next moment at which silence is to be told.
void TraceConnection::_watchTime() {
    std::optional<Clock::time_point> start;
    if (!_pending.empty()) {
        start = _pending.front().since;
    }
    if (_isToTellIncomplete()) {
        start = start ? std::min(*start, _lastFromClient) : _lastFromClient;
    }
    if (!start || _hasEnded) {
        _timer.cancel();
        return;
    }
    _timer.expires_at(*start + _context.timeout);
    _timer.async_wait([self = shared_from_this()](const auto& error) {
        if (!error && !self->_hasEnded) {
            self->_onTime();
        }
    });
}

void TraceConnection::_onTime() {
    const auto overdue = Clock::now() - _context.timeout;
    while (!_pending.empty() && _pending.front().since <= overdue) {
        _context.log.remark(
            _number,
            {"no reply to " + _pending.front().action + _withinTimeout(),
             "open a new connection, as a late reply would be taken for that of the next request; "
             "the service's log tells why, or the device is silent"});
        _pending.pop_front();
        --_context.underWay;
    }
    if (_isToTellIncomplete() && _lastFromClient <= overdue) {
        _tellIncomplete();
    }
    _watchTime();
}

/// What is held while the service takes bytes may be whole frames.
bool TraceConnection::_isToTellIncomplete() const {
    return !_requests.held().empty() && _toService.empty() && !_isIncompleteTold;
}

void TraceConnection::_tellIncomplete() {
    _isIncompleteTold = true;
    const std::string_view held = _requests.held();
    if (held.size() < reticle::FRAME_HEADER_BYTES) {
        _context.log.remark(_number, {ofAll(held.size(), reticle::FRAME_HEADER_BYTES) +
                                          " of a header have come, and no more",
                                      "send the rest: the service waits for it"});
        return;
    }
    const std::uint32_t announced = reticle::announcedBodyBytes(held);
    const std::uint32_t turned = theOtherWayRound(announced);
    _context.log.remark(_number,
                        {ofAll(held.size() - reticle::FRAME_HEADER_BYTES, announced) +
                             " of a body have come, and no more",
                         std::string("send the rest, or correct the length") +
                             (turned > 0 && turned < announced
                                  ? ", which is " + std::to_string(turned) + " the other way round"
                                  : "")});
}

std::string TraceConnection::_withinTimeout() const {
    return " within " + secondsText(std::chrono::duration<double>(_context.timeout).count()) + " s";
}

void TraceConnection::_dropPending() {
    _context.underWay -= _pending.size();
    _pending.clear();
}

void TraceConnection::_end(const std::string& by) {
    if (std::exchange(_hasEnded, true)) {
        return;
    }
    _context.log.closed(_number, by);
    _dropPending();
    _timer.cancel();
    asio::error_code ignored;
    _client.close(ignored);
    _service.close(ignored);
}

}  // namespace reticlectl
