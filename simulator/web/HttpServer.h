#pragma once

#include <cstdint>
#include <string>

#include "simulator/web/HttpMessages.h"
#include "simulator/web/WebAddress.h"

struct mg_context;
struct mg_connection;

namespace sim {

/// An HTTP server for few browsers, on threads of its own.
///
/// A peer that sends or takes nothing for some seconds is left, and a request of more than a few
/// megabytes is refused.
class HttpServer {
public:
    /// Requests are answered at a time; others wait, streams count as long as they last.
    static constexpr int THREADS = 16;
    static constexpr long long MAX_BODY_BYTES = 8'000'000;

    /// Listens and serves at once.
    /// \throws std::runtime_error, naming the address, when that is not possible.
    HttpServer(const WebAddress& address, HttpHandler handler);

    /// Waits for the handlers, and for the streams: whoever made them ends them before.
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /// The port that it listens on.
    [[nodiscard]] std::uint16_t port() const;

private:
    [[nodiscard]] static int _serve(mg_connection* connection);
    void _answer(mg_connection* connection) const;

    HttpHandler _handler;
    std::string _host;
    mg_context* _context = nullptr;
};

}  // namespace sim
