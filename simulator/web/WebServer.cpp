#include "simulator/web/WebServer.h"

#include <json/value.h>

#include <chrono>
#include <exception>
#include <map>
#include <random>
#include <utility>

#include "simulator/base/JsonText.h"
#include "simulator/base/numberIn.h"
#include "simulator/web/WebParts.h"
#include "tools/reticlectl/gallery/NestedUses.h"
#include "tools/reticlectl/gallery/SvgPicture.h"

namespace sim {

namespace {

/// Nothing but what this server sends, nothing within another page.
constexpr const char* PAGE_POLICY =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; "
    "base-uri 'none'; form-action 'none'; frame-ancestors 'none'";
/// A picture may be opened by itself: it is then a document, of an unknown author.
constexpr const char* PICTURE_POLICY =
    "default-src 'none'; style-src 'unsafe-inline'; sandbox; frame-ancestors 'none'";

/// The page takes the connection for lost where it hears nothing for longer.
constexpr std::chrono::seconds BEAT{2};

constexpr const char* JSON_TYPE = "application/json";
constexpr std::string_view PICTURES = "/picture/";

HttpResponse refused(HttpStatus status, std::string reason) {
    return {status, "text/plain; charset=utf-8", std::move(reason), PAGE_POLICY, nullptr};
}

/// 128 bits that nobody guesses.
std::string randomText() {
    constexpr const char* TOKEN_DIGITS = "0123456789abcdef";
    constexpr std::size_t LENGTH = 32;
    std::random_device device;
    std::uniform_int_distribution<std::size_t> digit(0, 15);
    std::string text;
    while (text.size() < LENGTH) {
        text += TOKEN_DIGITS[digit(device)];
    }
    return text;
}

std::string filledIn(std::string text, const std::map<std::string, std::string>& values) {
    for (const auto& [name, value] : values) {
        text.replace(text.find(name), name.size(), value);
    }
    return text;
}

std::string streamText(const std::string& kind, const std::string& data) {
    return "event: " + kind + "\ndata: " + data + "\n\n";
}

}  // namespace

WebServer::WebServer(const WebAddress& address, Device device)
    : _device(std::move(device)),
      _host(address.host),
      _run(randomText()),
      _token(randomText()),
      _page(filledIn(WEB_PAGE, {{"{token}", _token}, {"{run}", _run}})),
      _guard(address.host, _token),
      _server(address, [this](const HttpRequest& request) { return _answer(request); }) {}

std::string WebServer::url() const {
    return "http://" + _host + ':' + std::to_string(_server.port()) + '/';
}

HttpResponse WebServer::_answer(const HttpRequest& request) {
    if (!_guard.isForUs(request)) {
        return refused(HTTP_FORBIDDEN,
                       "Ask for this page by its address, and nothing from another page.\n");
    }
    if (request.path == "/command") {
        return request.method == "POST" ? _command(request)
                                        : refused(HTTP_BAD_METHOD, "Commands are posted.\n");
    }
    return request.method == "GET" ? _get(request.path)
                                   : refused(HTTP_BAD_METHOD, "This is only for reading.\n");
}

HttpResponse WebServer::_get(const std::string& path) {
    if (path == "/") {
        return {HTTP_OK, "text/html; charset=utf-8", _page, PAGE_POLICY, nullptr};
    }
    if (path == "/page.css") {
        return {HTTP_OK, "text/css; charset=utf-8", WEB_STYLE, PAGE_POLICY, nullptr};
    }
    if (path == "/page.js") {
        return {HTTP_OK, "text/javascript; charset=utf-8", WEB_SCRIPT, PAGE_POLICY, nullptr};
    }
    if (path == "/icon.svg") {
        return {HTTP_OK, "image/svg+xml", WEB_ICON, PICTURE_POLICY, nullptr};
    }
    if (path == "/events") {
        return _stream();
    }
    return path.starts_with(PICTURES) ? _picture(path.substr(PICTURES.size()))
                                      : refused(HTTP_NOT_FOUND, "There is nothing here.\n");
}

HttpResponse WebServer::_picture(const std::string& number) const {
    const auto index = numberIn<int>(number);
    if (!index) {
        return refused(HTTP_NOT_FOUND, "That is no index.\n");
    }
    std::string data;
    try {
        data = _device.picture(*index);
    } catch (const std::exception& error) {
        return refused(HTTP_NOT_FOUND, error.what());
    }
    const auto picture = reticlectl::svgPicture(data);
    if (!picture) {
        return refused(HTTP_NO_PICTURE, "Its data are no picture.");
    }
    if (reticlectl::nestsUses(*picture)) {
        return refused(HTTP_NO_PICTURE, "Not drawn: it repeats parts that repeat others.");
    }
    return {HTTP_OK, "image/svg+xml", *picture, PICTURE_POLICY, nullptr};
}

HttpResponse WebServer::_stream() {
    EventHub::Seat seat = _events.join();
    if (!seat.queue) {
        return refused(HTTP_BUSY, "As many browsers look as may.\n");
    }
    std::string start = "retry: 1000\n\n" + streamText("hello", _run);
    for (const std::string& event : seat.past) {
        start += streamText("event", event);
    }
    // Asked after the queue has begun, so that no change falls between the two.
    start += streamText("status", _device.command({"status"}));
    HttpResponse response{HTTP_OK, "text/event-stream", "", PAGE_POLICY, nullptr};
    response.stream = [queue = std::move(seat.queue), start](const HttpSend& send) {
        bool isThere = send(start);
        while (isThere && !queue->hasEnded()) {
            const auto event = queue->pop(BEAT);
            isThere = send(event ? streamText("event", *event) : streamText("beat", "still here"));
        }
    };
    return response;
}

HttpResponse WebServer::_command(const HttpRequest& request) const {
    if (!_guard.isByThePage(request)) {
        return refused(HTTP_FORBIDDEN,
                       "Only the page itself gives commands, at the simulator's machine, under "
                       "127.0.0.1 or localhost.\n");
    }
    try {
        return {HTTP_OK, JSON_TYPE, _device.command(parseWords(request.body)), PAGE_POLICY,
                nullptr};
    } catch (const std::exception& error) {
        Json::Value answer;
        answer["error"] = error.what();
        return {HTTP_BAD_REQUEST, JSON_TYPE, compactJson(answer), PAGE_POLICY, nullptr};
    }
}

}  // namespace sim
