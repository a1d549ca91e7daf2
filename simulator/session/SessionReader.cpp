#include "simulator/session/SessionReader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "simulator/base/Files.h"

namespace sim {

namespace {

constexpr std::string_view MILLISECONDS = " ms";

const std::string& textOf(const Step& step) {
    if (!step.text) {
        throw std::runtime_error("\"" + step.instruction + "\" has no text");
    }
    return *step.text;
}

void requireNoText(const Step& step) {
    if (step.text) {
        throw std::runtime_error("\"" + step.instruction + "\" takes no text");
    }
}

SessionFile fileOf(const std::string& name, const Step& step) {
    if (!staysInside(name)) {
        throw std::runtime_error("'" + name + "' is no file name inside the root");
    }
    return {name, textOf(step)};
}

std::chrono::milliseconds timeOf(const std::string& object, const Step& step) {
    requireNoText(step);
    int time = 0;
    const char* const end = object.data() + object.size();
    const auto [stop, error] = std::from_chars(object.data(), end, time);
    if (error != std::errc{} || time < 0 ||
        std::string_view(stop, static_cast<std::size_t>(end - stop)) != MILLISECONDS) {
        throw std::runtime_error("'" + object + "' is no time, such as 100 ms");
    }
    return std::chrono::milliseconds(time);
}

}  // namespace

Session SessionReader::read() {
    _readHead();
    while (const std::optional<Step> step = _steps.next()) {
        try {
            _take(*step);
        } catch (const std::runtime_error& error) {
            throw std::runtime_error("line " + std::to_string(step->line) + ": " + error.what());
        }
    }
    if (_isOpen) {
        throw std::runtime_error("line " + std::to_string(_exchange.line) +
                                 ": the request has no answer");
    }
    return std::move(_session);
}

void SessionReader::_readHead() {
    const std::optional<Step> head = _steps.next();
    if (!head || head->instruction != SESSION_HEAD || head->text) {
        throw std::runtime_error("line " + std::to_string(head ? head->line : 1) +
                                 ": a session begins with \"" + SESSION_HEAD + "\"");
    }
}

void SessionReader::_take(const Step& step) {
    struct Verb {
        std::string_view start;
        void (SessionReader::*take)(const std::string& object, const Step& step);
        bool hasObject = false;
    };
    // "file " comes after the verb that begins with it.
    static constexpr std::array<Verb, 10> VERBS{
        {{"client sends", &SessionReader::_takeClientRequest},
         {"rtos receives", &SessionReader::_takeRequest},
         {"file exists ", &SessionReader::_takeNewData, true},
         {"file ", &SessionReader::_takeFile, true},
         {"rtos waits ", &SessionReader::_takeDelay, true},
         {"rtos pauses ", &SessionReader::_takeGap, true},
         {"rtos answers nothing", &SessionReader::_takeSilence},
         {"rtos answers", &SessionReader::_takeAnswer},
         {"rtos closes", &SessionReader::_takeClose},
         {"rtos resets", &SessionReader::_takeReset}}};
    const auto* const verb = std::find_if(VERBS.begin(), VERBS.end(), [&step](const Verb& known) {
        return known.hasObject ? step.instruction.starts_with(known.start)
                               : step.instruction == known.start;
    });
    if (verb == VERBS.end()) {
        throw std::runtime_error("\"" + step.instruction + "\" is no step of a session");
    }
    (this->*verb->take)(step.instruction.substr(verb->start.size()), step);
}

void SessionReader::_takeClientRequest(const std::string& /*object*/, const Step& step) {
    if (_isOpen) {
        throw std::runtime_error("the request before has no answer");
    }
    _session.clientRequests.push_back({textOf(step), _session.exchanges.size()});
}

void SessionReader::_takeRequest(const std::string& /*object*/, const Step& step) {
    if (_isOpen) {
        throw std::runtime_error("the request before has no answer");
    }
    _exchange.line = step.line;
    _exchange.request = textOf(step);
    _isOpen = true;
}

void SessionReader::_takeNewData(const std::string& name, const Step& step) {
    _requireOpen();
    _exchange.newData.push_back(fileOf(name, step));
}

void SessionReader::_takeFile(const std::string& name, const Step& step) {
    _requireOpen();
    _exchange.files.push_back(fileOf(name, step));
}

void SessionReader::_takeDelay(const std::string& time, const Step& step) {
    _requireOpen();
    _exchange.answer.delay = timeOf(time, step);
}

void SessionReader::_takeGap(const std::string& time, const Step& step) {
    _requireOpen();
    _exchange.answer.gap = timeOf(time, step);
}

void SessionReader::_takeSilence(const std::string& /*object*/, const Step& step) {
    _requireOpen();
    requireNoText(step);
    _finish();
}

void SessionReader::_takeAnswer(const std::string& /*object*/, const Step& step) {
    _requireOpen();
    _exchange.answer.bytes = textOf(step);
    _finish();
}

void SessionReader::_takeClose(const std::string& /*object*/, const Step& step) {
    requireNoText(step);
    _end(Delivery::End::CLOSE);
}

void SessionReader::_takeReset(const std::string& /*object*/, const Step& step) {
    requireNoText(step);
    _end(Delivery::End::RESET);
}

void SessionReader::_requireOpen() const {
    if (!_isOpen) {
        throw std::runtime_error("no request comes before this");
    }
}

void SessionReader::_finish() {
    _session.exchanges.push_back(std::exchange(_exchange, {}));
    _isOpen = false;
}

void SessionReader::_end(Delivery::End end) {
    if (_isOpen) {
        _finish();
    } else if (_session.exchanges.empty()) {
        throw std::runtime_error("no request comes before this");
    }
    _session.exchanges.back().answer.end = end;
}

}  // namespace sim
