#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "simulator/web/EventHub.h"
#include "simulator/web/HttpServer.h"
#include "simulator/web/RequestGuard.h"
#include "simulator/web/WebAddress.h"

namespace sim {

/// The simulated device in a browser: its page, the events as they come, and what the page's
/// buttons do. docs/bench-page.md tells it from the outside.
class WebServer {
public:
    /// What is behind the page. Called on the server's threads, several at a time.
    struct Device {
        /// Carries out the command `words`. \return a JSON object on one line
        /// \throws std::exception, with a text for people.
        std::function<std::string(const std::vector<std::string>& words)> command;
        /// The data of reticle `index` in the user's colour.
        /// \throws std::exception, with a text for people, where there is none.
        std::function<std::string(int index)> picture;
    };

    /// Serves at once.
    /// \throws std::runtime_error, naming the address, when that is not possible.
    WebServer(const WebAddress& address, Device device);

    /// Ends the streams; no function of the device is called any more after that.
    ~WebServer() { _events.end(); }
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;

    /// Sends an event, a JSON object on one line, to every browser. Never waits for one: a browser
    /// that lags is left, and asks again by itself. Any thread.
    void publish(const std::string& eventJson) { _events.publish(eventJson); }

    /// "http://ADDRESS:PORT/".
    [[nodiscard]] std::string url() const;

private:
    [[nodiscard]] HttpResponse _answer(const HttpRequest& request);
    [[nodiscard]] HttpResponse _get(const std::string& path);
    [[nodiscard]] HttpResponse _picture(const std::string& number) const;
    [[nodiscard]] HttpResponse _stream();
    [[nodiscard]] HttpResponse _command(const HttpRequest& request) const;

    Device _device;
    std::string _host;
    std::string _run;    ///< tells this server from one that comes after it
    std::string _token;  ///< what only the page knows
    std::string _page;
    RequestGuard _guard;
    EventHub _events;
    HttpServer _server;  ///< the last one: it serves at once
};

}  // namespace sim
