#include "simulator/session/ReplayDevice.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <utility>

#include "simulator/base/EscapedText.h"
#include "simulator/base/Files.h"
#include "simulator/base/NamedFiles.h"

namespace fs = std::filesystem;

namespace sim {

namespace {

std::string_view lineAt(std::string_view text, std::size_t start) {
    const std::string_view rest = text.substr(start);
    return rest.substr(0, rest.find('\n'));
}

/// A line for people; `start` is where it begins in `text`.
std::string shown(std::string_view text, std::size_t start) {
    const std::string_view line = lineAt(text, start);
    return isPlainText(line) ? std::string(line) : escaped(line) + "   (escaped)";
}

}  // namespace

ReplayDevice::ReplayDevice(Session session, fs::path root)
    : _session(std::move(session)), _root(std::move(root)) {
    fs::create_directories(_root / RETICLES_DIRECTORY);
    for (const Exchange& exchange : _session.exchanges) {
        for (const SessionFile& file : exchange.files) {
            fs::create_directories((_root / file.name).parent_path());
        }
    }
}

Delivery ReplayDevice::exchange(const std::string& request) {
    Delivery refusal{.bytes = "", .gap = {}, .end = Delivery::End::CLOSE};
    if (!_difference.empty()) {
        return refusal;
    }
    try {
        _compare(request);
        if (!_difference.empty()) {
            return refusal;
        }
        const Exchange& exchange = _session.exchanges[_played];
        for (const SessionFile& file : exchange.files) {
            replaceFile(_root / file.name, file.text);
            _observer({file.name, file.text.size()});
        }
        ++_played;
        return exchange.answer;
    } catch (const std::exception& error) {
        _difference = _place() + ": " + error.what();
        return refusal;
    }
}

std::string ReplayDevice::expectation() const {
    const std::string& request = _session.exchanges[_played].request;
    return _place() + ": the request does not come\n" + request;
}

void ReplayDevice::_compare(const std::string& request) {
    if (isComplete()) {
        _difference = "after all " + std::to_string(_played) +
                      " exchanges: a request that is not expected\n" + request;
        return;
    }
    const Exchange& expected = _session.exchanges[_played];
    if (request != expected.request) {
        _differ("the request differs", expected.request, request);
        return;
    }
    for (const SessionFile& file : expected.newData) {
        _compareNewData(file);
    }
}

void ReplayDevice::_compareNewData(const SessionFile& expected) {
    const std::optional<std::string> text = readFile(_root / expected.name);
    if (!text) {
        _difference = _place() + ": the file " + expected.name + " is missing";
    } else if (*text != expected.text) {
        _differ("the file " + expected.name + " differs", expected.text, *text);
    }
}

void ReplayDevice::_differ(std::string_view what, std::string_view expected, std::string_view got) {
    const auto [end, otherEnd] =
        std::mismatch(expected.begin(), expected.end(), got.begin(), got.end());
    const auto same = static_cast<std::size_t>(end - expected.begin());
    const std::string_view common = expected.substr(0, same);
    const std::size_t lineStart = common.rfind('\n') + 1;
    const auto line = std::count(common.begin(), common.end(), '\n') + 1;
    _difference = _place() + ": " + std::string(what) + ", first in its line " +
                  std::to_string(line) + "\nexpected: " + shown(expected, lineStart) +
                  "\ngot:      " + shown(got, lineStart);
}

std::string ReplayDevice::_place() const {
    return "exchange " + std::to_string(_played + 1) + " (line " +
           std::to_string(_session.exchanges[_played].line) + " of the session)";
}

}  // namespace sim
