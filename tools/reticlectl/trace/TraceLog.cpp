#include "tools/reticlectl/trace/TraceLog.h"

#include <ctime>
#include <iomanip>
#include <sstream>
#include <utility>

#include "reticle-client/Errors.h"
#include "tools/reticlectl/outcome/JsonLine.h"
#include "tools/reticlectl/terminal/DisplayText.h"

namespace reticlectl {

namespace {

using SystemClock = std::chrono::system_clock;

/// With milliseconds behind what `format` gives.
std::string timeText(const std::tm& time, const char* format, SystemClock::time_point moment) {
    constexpr int DIGITS = 3;
    const auto whole = std::chrono::floor<std::chrono::seconds>(moment);
    std::ostringstream text;
    text << std::put_time(&time, format) << '.' << std::setw(DIGITS) << std::setfill('0')
         << std::chrono::floor<std::chrono::milliseconds>(moment - whole).count();
    return text.str();
}

/// "21:05:09.123" for people, who see their own time on other clocks.
std::string localTime(SystemClock::time_point moment) {
    const std::time_t seconds = SystemClock::to_time_t(moment);
    std::tm time{};
    return timeText(*::localtime_r(&seconds, &time), "%T", moment);
}

/// "2026-11-22T20:05:09.123Z".
std::string worldTime(SystemClock::time_point moment) {
    const std::time_t seconds = SystemClock::to_time_t(moment);
    std::tm time{};
    return timeText(*::gmtime_r(&seconds, &time), "%FT%T", moment) + 'Z';
}

/// What a person sees of an action or result.
std::string shownName(const std::string& name) {
    constexpr std::size_t SHOWN_COLUMNS = 60;
    return shortened(printable(name), SHOWN_COLUMNS);
}

std::string shownAction(const RequestCheck& check) {
    if (check.outcome == RequestCheck::Outcome::ENDS_SERVICE) {
        // Blanks at its end are to be seen.
        return '"' + shownName(check.action) + '"';
    }
    return check.action.empty() ? "no action" : check.action;
}

Json::Value named(const char* event) {
    Json::Value document;
    document["event"] = event;
    return document;
}

Json::Value withText(Json::Value event, std::size_t bytes, std::string_view text) {
    event["bytes"] = static_cast<Json::UInt64>(bytes);
    event["text"] = std::string(text);
    return event;
}

std::string meaningOf(const std::string& result) {
    return reticle::resultMeaning(result) +
           (result == "RETICLE_INDEX_NOT_FOUND"
                ? "; an index is the number that the list gives as \"index\", no place in the list"
                : "");
}

/// \return what there is to say about a reply by itself.
std::optional<reticle::Mistake> describe(const std::string& text, std::string& line,
                                         Json::Value& event) {
    try {
        const reticle::Reply reply = reticle::Reply::parse(text);
        line = reply.result ? shownName(*reply.result) : "no result";
        if (line.empty()) {
            line = "\"\"";
        }
        event["result"] = reply.result ? Json::Value(*reply.result) : Json::Value();
        if (reply.isRefused()) {
            return reticle::Mistake{"refused by the device", meaningOf(*reply.result)};
        }
        line += ", " + counted(reply.reticles.size(), "reticle");
        return std::nullopt;
    } catch (const reticle::MalformedReply& error) {
        line = "no reply of the service";
        return reticle::Mistake{"not understood", error.what()};
    }
}

std::string hexOf(std::string_view bytes) {
    constexpr std::string_view DIGITS = "0123456789abcdef";
    constexpr unsigned LOW = 0xF;
    std::string text;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += {DIGITS[value >> 4U], DIGITS[value & LOW]};
    }
    return text;
}

}  // namespace

void TraceLog::listening(const std::string& address) const {
    Json::Value event = named("listening");
    event["address"] = address;
    event["service"] = _session.peer();
    _print(0, "listening on " + address + " for clients of " + _session.peer(), std::move(event));
}

std::size_t TraceLog::connected(const std::string& peer) {
    ++_connections;
    Json::Value event = named("connected");
    event["peer"] = peer;
    _print(_connections, "connected from " + peer, std::move(event));
    return _connections;
}

void TraceLog::request(std::size_t connection, const RequestCheck& check, std::string_view body,
                       bool isPassedOn) {
    ++_requests;
    _heldBack += isPassedOn ? 0 : 1;
    Json::Value event = withText(named("request"), body.size(), body);
    event["action"] = check.action;
    event["passedOn"] = isPassedOn;
    _print(connection,
           "> " + shownAction(check) + ", " + counted(body.size(), "byte") +
               (isPassedOn ? "" : ", not passed on"),
           std::move(event));
    for (const reticle::Mistake& mistake : check.mistakes) {
        remark(connection, mistake);
    }
}

void TraceLog::noFrame(std::size_t connection, std::string_view bytes) const {
    Json::Value event = withText(named("noFrame"), bytes.size(), bytes);
    // As text, bytes that are none of UTF-8 would all look alike.
    event["hex"] = hexOf(bytes);
    _print(connection, "> no frame, " + counted(bytes.size(), "byte"), std::move(event));
}

void TraceLog::reply(std::size_t connection, std::uint32_t size, const std::string& text,
                     std::optional<Milliseconds> time) {
    ++_replies;
    Json::Value event = withText(named("reply"), size, text);
    std::string line = "too long to be looked at";
    std::optional<reticle::Mistake> mistake;
    if (!text.empty() || size == 0) {
        mistake = describe(text, line, event);
    }
    if (time) {
        event["ms"] = time->count();
    }
    _print(connection,
           "< " + line + ", " + counted(size, "byte") +
               (time ? " after " + millisecondsText(*time) + " ms" : ", for no request under way"),
           std::move(event));
    if (mistake) {
        remark(connection, *mistake);
    }
}

void TraceLog::remark(std::size_t connection, const reticle::Mistake& mistake) {
    ++_remarks;
    Json::Value event = named("remark");
    event["what"] = mistake.what;
    event["remedy"] = mistake.remedy;
    _print(connection, "! " + mistake.what + ": " + mistake.remedy, std::move(event));
}

void TraceLog::closed(std::size_t connection, const std::string& by) const {
    Json::Value event = named("closed");
    event["by"] = by;
    _print(connection, "closed by " + by, std::move(event));
}

void TraceLog::sum() const {
    Json::Value event = named("sum");
    event["connections"] = static_cast<Json::UInt64>(_connections);
    event["requests"] = static_cast<Json::UInt64>(_requests);
    event["replies"] = static_cast<Json::UInt64>(_replies);
    event["remarks"] = static_cast<Json::UInt64>(_remarks);
    event["notPassedOn"] = static_cast<Json::UInt64>(_heldBack);
    _print(0,
           counted(_connections, "connection") + ", " + counted(_requests, "request") +
               (_heldBack > 0 ? " (" + std::to_string(_heldBack) + " not passed on)" : "") + ", " +
               std::to_string(_replies) + (_replies == 1 ? " reply, " : " replies, ") +
               counted(_remarks, "remark"),
           std::move(event));
}

void TraceLog::_print(std::size_t connection, const std::string& line, Json::Value event) const {
    const auto now = SystemClock::now();
    if (_session.wantsJson) {
        event["time"] = worldTime(now);
        if (connection > 0) {
            event["connection"] = static_cast<Json::UInt64>(connection);
        }
        _session.out << printableJson(toJsonLine(event)) << std::endl;
        return;
    }
    _session.out << localTime(now) << ' '
                 << (connection > 0 ? '#' + std::to_string(connection) + ' ' : "")
                 << printable(line) << std::endl;
}

}  // namespace reticlectl
