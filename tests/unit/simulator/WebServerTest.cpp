#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "simulator/device/Fault.h"
#include "simulator/web/WebParts.h"
#include "simulator/web/WebServer.h"
#include "tests/support/Connection.h"
#include "tests/support/Patience.h"
#include "tests/support/Sockets.h"

namespace sim {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* SQUARE = R"(<svg viewBox="0 0 1 1"><path d="M0 0h1v1z"/></svg>)";
constexpr const char* SQUARE_SERVED =
    R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 1 1"><path d="M0 0h1v1z"/></svg>)";
constexpr const char* NESTED =
    R"(<svg><g id="a"><use href="#b"/></g><g id="b"><use href="#a"/></g></svg>)";

/// A page in front of a device that knows a few words.
class WebServerTest : public testing::Test {
protected:
    [[nodiscard]] std::uint16_t port() const {
        const std::string url = server.url();
        return static_cast<std::uint16_t>(std::stoi(url.substr(url.rfind(':') + 1)));
    }

    [[nodiscard]] Connection send(const std::string& request) const {
        Connection connection(sockets::connectTo(port()));
        connection.send(request);
        return connection;
    }

    /// The whole answer. \param headers each with its line's end
    [[nodiscard]] std::string get(const std::string& path,
                                  const std::string& headers = "Host: 127.0.0.1\r\n") const {
        return answerTo("GET " + path + " HTTP/1.1\r\n" + headers + "\r\n");
    }

    [[nodiscard]] std::string post(const std::string& body, const std::string& headers) const {
        return answerTo("POST /command HTTP/1.1\r\nHost: localhost\r\nContent-Length: " +
                        std::to_string(body.size()) + "\r\n" + headers + "\r\n" + body);
    }

    [[nodiscard]] std::string answerTo(const std::string& request) const {
        constexpr std::size_t ALL = 1'000'000;
        return send(request).receive(ALL);
    }

    /// As the page sends it.
    [[nodiscard]] std::string tokenHeader() const {
        std::smatch token;
        const std::string page = get("/");
        return std::regex_search(page, token,
                                 std::regex("name=\"token\" content=\"([0-9a-f]{32})\""))
                   ? "X-Rtos-Sim-Token: " + token.str(1) + "\r\n"
                   : "";
    }

    /// Reads until `part` is there. \return all that came
    static std::string readUntil(Connection& connection, const std::string& part) {
        std::string text;
        while (text.find(part) == std::string::npos) {
            const std::string more = connection.receiveOnce(1'000'000);
            if (more.empty()) {
                break;
            }
            text += more;
        }
        return text;
    }

    std::string command(const std::vector<std::string>& words) {
        const std::lock_guard lock(mutex);
        given.push_back(words);
        if (words.at(0) == "fail") {
            throw std::runtime_error("it is \"no\" good");
        }
        return R"({"words":)" + std::to_string(words.size()) + "}";
    }

    static std::string picture(int index) {
        if (index == 0) {
            return SQUARE;
        }
        if (index == 1) {
            return NESTED;
        }
        if (index == 2) {
            return "no <svg>";
        }
        throw std::runtime_error("no reticle has that index");
    }

    std::mutex mutex;
    std::vector<std::vector<std::string>> given;  ///< commands so far
    WebServer server{{"127.0.0.1", 0},
                     {[this](const auto& words) { return command(words); }, &picture}};
};

TEST_F(WebServerTest, ThePageReachesNothingButItsServer) {
    const std::string page = get("/");
    EXPECT_THAT(page, StartsWith("HTTP/1.1 200 OK\r\nContent-Type: text/html; charset=utf-8\r\n"));
    EXPECT_THAT(page,
                HasSubstr("\r\nContent-Security-Policy: default-src 'none'; script-src 'self'; "
                          "style-src 'self'; img-src 'self'; connect-src 'self'; base-uri "
                          "'none'; form-action 'none'; frame-ancestors 'none'\r\n"));
    EXPECT_THAT(page, HasSubstr("\r\nX-Content-Type-Options: nosniff\r\n"));
    EXPECT_THAT(page, HasSubstr("\r\nCross-Origin-Resource-Policy: same-origin\r\n"));
    EXPECT_THAT(page, HasSubstr("\r\nCache-Control: no-store\r\n"));
    EXPECT_THAT(get("/page.css"), HasSubstr("\r\nContent-Type: text/css; charset=utf-8\r\n"));
    EXPECT_THAT(get("/page.js"), HasSubstr("\r\nContent-Type: text/javascript; charset=utf-8\r\n"));
    for (const char* part : {WEB_PAGE, WEB_STYLE, WEB_SCRIPT}) {
        std::string text = part;
        text = std::regex_replace(text, std::regex("http://www\\.w3\\.org/2000/svg"), "");
        EXPECT_THAT(text, Not(HasSubstr("://")));
    }
}

TEST_F(WebServerTest, ForeignHostsAndPagesGetNothing) {
    for (const char* path : {"/", "/page.js", "/events", "/picture/0", "/elsewhere"}) {
        const std::string answer = get(path, "Host: evil.example\r\n");
        EXPECT_THAT(answer, StartsWith("HTTP/1.1 403 ")) << path;
        EXPECT_THAT(answer, Not(HasSubstr("token"))) << path;
    }
    EXPECT_THAT(get("/", "Host: evil.example:80\r\nHost: 127.0.0.1\r\n"),
                StartsWith("HTTP/1.1 40"));
    EXPECT_THAT(get("/events", "Host: localhost\r\nSec-Fetch-Site: cross-site\r\n"),
                StartsWith("HTTP/1.1 403 "));
    EXPECT_THAT(answerTo("POST /command HTTP/1.1\r\nHost: evil.example\r\n" + tokenHeader() +
                         "Content-Length: 8\r\n\r\n[\"word\"]"),
                StartsWith("HTTP/1.1 403 "));
    EXPECT_TRUE(given.empty());
}

TEST_F(WebServerTest, ACommandNeedsTheToken) {
    EXPECT_THAT(post(R"(["reset"])", ""), StartsWith("HTTP/1.1 403 "));
    EXPECT_THAT(post(R"(["reset"])", "X-Rtos-Sim-Token: guess\r\n"), StartsWith("HTTP/1.1 403 "));
    EXPECT_TRUE(given.empty());

    const std::string answer = post(R"(["rename","3","Ä \" \u0001"])", tokenHeader());
    EXPECT_THAT(answer, StartsWith("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n"));
    EXPECT_THAT(answer, testing::EndsWith("\r\n\r\n{\"words\":3}"));
    EXPECT_THAT(given, testing::ElementsAre(testing::ElementsAre("rename", "3", "Ä \" \x01")));
}

TEST_F(WebServerTest, ACommandThatCannotBeCarriedOutSaysWhy) {
    const std::string answer = post(R"(["fail"])", tokenHeader());
    EXPECT_THAT(answer, StartsWith("HTTP/1.1 400 "));
    EXPECT_THAT(answer, testing::EndsWith("\r\n\r\n{\"error\":\"it is \\\"no\\\" good\"}"));
}

TEST_F(WebServerTest, WhatIsNoCommandReachesNoDevice) {
    const std::string token = tokenHeader();
    for (const char* body : {"", "word", "{}", R"({"a":"b"})", "[[]]", R"(["a")", "\xff"}) {
        EXPECT_THAT(post(body, token), StartsWith("HTTP/1.1 400 ")) << body;
    }
    EXPECT_THAT(get("/command"), StartsWith("HTTP/1.1 405 "));
    Connection large = send("POST /command HTTP/1.1\r\nHost: localhost\r\n" + token +
                            "Content-Length: 8000001\r\n\r\n");
    EXPECT_THAT(
        readUntil(large, "large.\n"),
        testing::AllOf(StartsWith("HTTP/1.1 413 "), HasSubstr("\r\n\r\nThat is too large.")));
    EXPECT_TRUE(given.empty());
}

TEST_F(WebServerTest, ThereIsNothingElse) {
    for (const char* path : {"/index.html", "/../page.js", "/etc/passwd", "/%2e%2e/etc/passwd",
                             "//etc/passwd", "/picture/", "/picture/x", "/picture/0x",
                             "/picture/-1", "/picture/99999999999", "/page.js/"}) {
        EXPECT_THAT(get(path),
                    testing::ContainsRegex("^HTTP/1.1 40[04] |^HTTP/1.1 200 OK\r\nContent-"
                                           "Type: text/javascript"))
            << path;
        EXPECT_THAT(get(path), Not(HasSubstr("root:x:"))) << path;
    }
    for (const char* method : {"PUT", "DELETE", "OPTIONS", "POST", "PROPFIND"}) {
        EXPECT_THAT(answerTo(std::string(method) + " / HTTP/1.1\r\nHost: localhost\r\n\r\n"),
                    testing::ContainsRegex("^HTTP/1.1 4[0-9][0-9] "))
            << method;
    }
}

TEST_F(WebServerTest, BytesThatAreNoRequestEndTheirConnectionAlone) {
    EXPECT_THAT(answerTo("\x16\x03\x01\r\n\r\n"), Not(HasSubstr("200 OK")));
    EXPECT_THAT(answerTo("GET / HTTP/1.1\r\nHost: " + std::string(100'000, 'x') + "\r\n\r\n"),
                Not(HasSubstr("200 OK")));
    EXPECT_THAT(get("/"), StartsWith("HTTP/1.1 200 OK"));
}

TEST_F(WebServerTest, APictureIsHarmlessEvenByItself) {
    const std::string answer = get("/picture/0?any");
    EXPECT_THAT(answer, StartsWith("HTTP/1.1 200 OK\r\nContent-Type: image/svg+xml\r\n"
                                   "Content-Security-Policy: default-src 'none'; style-src "
                                   "'unsafe-inline'; sandbox; frame-ancestors 'none'\r\n"));
    EXPECT_THAT(answer, testing::EndsWith(SQUARE_SERVED));
}

TEST_F(WebServerTest, WhatIsNotDrawnSaysWhy) {
    EXPECT_THAT(get("/picture/1"), HasSubstr("Not drawn: it repeats parts that repeat others."));
    EXPECT_THAT(get("/picture/2"), HasSubstr("Its data are no picture."));
    EXPECT_THAT(get("/picture/3"), HasSubstr("no reticle has that index"));
}

TEST_F(WebServerTest, ABrowserGetsWhatWasWhatIsAndWhatComes) {
    server.publish(R"({"event":1})");
    Connection stream = send("GET /events HTTP/1.1\r\nHost: localhost\r\n\r\n");
    const std::string start = readUntil(stream, "event: status\ndata: {\"words\":1}\n\n");
    EXPECT_THAT(start, HasSubstr("\r\nContent-Type: text/event-stream\r\n"));
    EXPECT_THAT(start, HasSubstr("\n\nevent: event\ndata: {\"event\":1}\n\nevent: status\n"));
    server.publish(R"({"event":2})");
    EXPECT_THAT(readUntil(stream, "}\n\n"), HasSubstr("event: event\ndata: {\"event\":2}\n\n"));
}

TEST_F(WebServerTest, ABrowserHearsThatTheServerIsThere) {
    Connection stream = send("GET /events HTTP/1.1\r\nHost: localhost\r\n\r\n");
    EXPECT_THAT(readUntil(stream, "event: beat"), HasSubstr("event: beat"));
}

TEST_F(WebServerTest, ThereAreSeatsForSomeBrowsersAndThePageForAll) {
    std::vector<Connection> streams;
    for (std::size_t number = 0; number < EventHub::MAX_BROWSERS; ++number) {
        streams.push_back(send("GET /events HTTP/1.1\r\nHost: localhost\r\n\r\n"));
        EXPECT_THAT(readUntil(streams.back(), "status"), HasSubstr("200 OK"));
    }
    EXPECT_THAT(get("/events"), StartsWith("HTTP/1.1 503 "));
    EXPECT_THAT(get("/"), StartsWith("HTTP/1.1 200 OK"));
    streams.pop_back();
    EXPECT_TRUE(eventually([this] {
        Connection stream = send("GET /events HTTP/1.1\r\nHost: localhost\r\n\r\n");
        return readUntil(stream, "\r\n\r\n").starts_with("HTTP/1.1 200");
    }));
}

TEST_F(WebServerTest, ABrowserThatReadsNothingHoldsUpNobody) {
    constexpr int SMALL_BYTES = 4096;
    constexpr std::size_t EVENTS = 200;
    Connection stalled(sockets::connectTo(port(), SMALL_BYTES));
    stalled.send("GET /events HTTP/1.1\r\nHost: localhost\r\n\r\n");
    Connection reading = send("GET /events HTTP/1.1\r\nHost: localhost\r\n\r\n");
    static_cast<void>(readUntil(reading, "event: status"));
    for (std::size_t number = 0; number < EVENTS; ++number) {
        server.publish(std::string(EventQueue::MAX_BYTES / 100, 'x') + std::to_string(number) +
                       '.');
        EXPECT_THAT(readUntil(reading, "x" + std::to_string(number) + "."),
                    Not(testing::IsEmpty()));
    }
    EXPECT_THAT(get("/"), StartsWith("HTTP/1.1 200 OK"));
}

TEST(WebServer, SaysWhereItCannotServe) {
    const WebServer::Device nothing{[](const auto&) { return "{}"; }, [](int) { return ""; }};
    const WebServer first({"127.0.0.1", 0}, nothing);
    const std::string url = first.url();
    const auto port = static_cast<std::uint16_t>(std::stoi(url.substr(url.rfind(':') + 1)));
    try {
        const WebServer second({"127.0.0.1", port}, nothing);
        FAIL() << "two servers on one port";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(std::string(error.what()),
                  "cannot serve the page on 127.0.0.1:" + std::to_string(port));
    }
}

/// The names and arguments that `text` has by `pattern`.
std::vector<std::string> allOf(const std::string& text, const std::string& pattern) {
    const std::regex expression(pattern);
    std::vector<std::string> found;
    for (std::sregex_iterator at(text.begin(), text.end(), expression), end; at != end; ++at) {
        found.push_back(at->str(1) + (at->length(2) > 0 ? ":" : ""));
    }
    std::sort(found.begin(), found.end());
    return found;
}

TEST(WebPage, OffersEveryFault) {
    const auto offered =
        allOf(WEB_PAGE, "<option value=\"([a-z-]+)\"(?: data-argument=\"([a-z_]+)\")?[^>]*>\\1 –");
    EXPECT_EQ(offered, allOf("\n" + faultHelp(), "\n  ([a-z-]+)(:?)"));
    EXPECT_FALSE(offered.empty());
}

}  // namespace
}  // namespace sim
