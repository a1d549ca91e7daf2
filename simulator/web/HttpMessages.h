#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace sim {

/// The result numbers of HTTP that are given.
enum HttpStatus : int {
    HTTP_OK = 200,
    HTTP_BAD_REQUEST = 400,
    HTTP_FORBIDDEN = 403,
    HTTP_NOT_FOUND = 404,
    HTTP_BAD_METHOD = 405,
    HTTP_TOO_LARGE = 413,
    HTTP_NO_PICTURE = 415,
    HTTP_FAILURE = 500,
    HTTP_BUSY = 503,
};

/// What a browser asks.
struct HttpRequest {
    std::string method;
    std::string path;                            ///< without the query
    std::map<std::string, std::string> headers;  ///< names in lower case
    std::string body;
    std::string peer;  ///< the address that it comes from

    /// The header `name`, in lower case; empty where there is none.
    [[nodiscard]] std::string header(const std::string& name) const {
        const auto found = headers.find(name);
        return found == headers.end() ? std::string() : found->second;
    }
};

/// Sends bytes to a browser. \return whether it still takes them
using HttpSend = std::function<bool(std::string_view bytes)>;

/// What it gets.
struct HttpResponse {
    HttpStatus status = HTTP_OK;
    std::string type = "text/plain; charset=utf-8";
    std::string body;
    std::string policy;  ///< its Content-Security-Policy
    std::function<void(const HttpSend& send)>
        stream;  ///< where set, sends what follows the headers
};

/// Asked on threads of the server, for several requests at a time.
using HttpHandler = std::function<HttpResponse(const HttpRequest& request)>;

}  // namespace sim
