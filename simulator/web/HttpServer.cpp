#include "simulator/web/HttpServer.h"

#include <civetweb.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cctype>
#include <chrono>
#include <exception>
#include <stdexcept>
#include <thread>
#include <utility>

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>

namespace sim {

namespace {

constexpr const char* PEER_PATIENCE_MS = "10000";

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char character) {
        return static_cast<char>(std::tolower(character));
    });
    return text;
}

HttpRequest requestOf(const mg_request_info& info) {
    HttpRequest request{info.request_method,
                        info.local_uri == nullptr ? "" : info.local_uri,
                        {},
                        {},
                        info.remote_addr};
    for (int i = 0; i < info.num_headers; ++i) {
        const mg_header& header = info.http_headers[i];
        request.headers.emplace(lowerCase(header.name), header.value);
    }
    return request;
}

/// \return whether all of it has come
bool readBody(mg_connection* connection, long long size, std::string& body) {
    body.resize(static_cast<std::size_t>(size));
    std::size_t done = 0;
    while (done < body.size()) {
        const int count = mg_read(connection, body.data() + done, body.size() - done);
        if (count <= 0) {
            return false;
        }
        done += static_cast<std::size_t>(count);
    }
    return true;
}

bool sendAll(mg_connection* connection, std::string_view bytes) {
    return mg_write(connection, bytes.data(), bytes.size()) == static_cast<int>(bytes.size());
}

void knockAt(const std::string& host, std::uint16_t port) {
    asio::io_context io;
    asio::ip::tcp::socket socket(io);
    asio::error_code ignored;
    socket.connect({asio::ip::make_address_v4(host), port}, ignored);
}

/// The policy keeps what is served from reaching anything else; the rest keeps other pages from
/// reaching what is served.
std::string headOf(const HttpResponse& response) {
    std::string head = "HTTP/1.1 " + std::to_string(response.status) + ' ' +
                       mg_get_response_code_text(nullptr, response.status) +
                       "\r\nContent-Type: " + response.type +
                       "\r\nContent-Security-Policy: " + response.policy +
                       "\r\nX-Content-Type-Options: nosniff"
                       "\r\nReferrer-Policy: no-referrer"
                       "\r\nCross-Origin-Opener-Policy: same-origin"
                       "\r\nCross-Origin-Resource-Policy: same-origin"
                       "\r\nCache-Control: no-store"
                       "\r\nConnection: close\r\n";
    if (!response.stream) {
        head += "Content-Length: " + std::to_string(response.body.size()) + "\r\n";
    }
    return head + "\r\n";
}

}  // namespace

HttpServer::HttpServer(const WebAddress& address, HttpHandler handler)
    : _handler(std::move(handler)), _host(address.host) {
    const std::string listensOn = address.host + ':' + std::to_string(address.port);
    const std::string threads = std::to_string(THREADS);
    std::array<const char*, 9> options = {
        "listening_ports", listensOn.c_str(), "num_threads", threads.c_str(), "request_timeout_ms",
        PEER_PATIENCE_MS,  "tcp_nodelay",     "1",           nullptr};
    mg_callbacks callbacks{};
    callbacks.begin_request = &HttpServer::_serve;
    callbacks.log_message = [](const mg_connection* /*connection*/, const char* /*text*/) {
        return 1;
    };
    mg_init_library(MG_FEATURES_DEFAULT);
    _context = mg_start(&callbacks, this, options.data());
    if (_context == nullptr) {
        mg_exit_library();
        throw std::runtime_error("cannot serve the page on " + listensOn);
    }
}

HttpServer::~HttpServer() {
    // The library looks every 2 s whether it is to end, and whenever somebody connects.
    std::atomic<bool> hasStopped = false;
    std::thread knocking([this, port = port(), &hasStopped] {
        while (!hasStopped) {
            knockAt(_host, port);
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    });
    mg_stop(_context);
    hasStopped = true;
    knocking.join();
    mg_exit_library();
}

std::uint16_t HttpServer::port() const {
    mg_server_port port{};
    mg_get_server_ports(_context, 1, &port);
    return static_cast<std::uint16_t>(port.port);
}

int HttpServer::_serve(mg_connection* connection) {
    static_cast<const HttpServer*>(mg_get_user_context_data(connection))->_answer(connection);
    return 1;
}

void HttpServer::_answer(mg_connection* connection) const {
    const mg_request_info& info = *mg_get_request_info(connection);
    HttpRequest request = requestOf(info);
    HttpResponse response;
    if (info.content_length > MAX_BODY_BYTES) {
        response.status = HTTP_TOO_LARGE;
        response.body = "That is too large.\n";
    } else if (info.content_length > 0 &&
               !readBody(connection, info.content_length, request.body)) {
        response.status = HTTP_BAD_REQUEST;
        response.body = "Only a part of it has come.\n";
    } else {
        try {
            response = _handler(request);
        } catch (const std::exception& error) {
            response.status = HTTP_FAILURE;
            response.body = error.what();
        }
    }
    if (sendAll(connection, headOf(response)) && response.stream) {
        response.stream(
            [connection](std::string_view bytes) { return sendAll(connection, bytes); });
    } else {
        sendAll(connection, response.body);
    }
}

}  // namespace sim
