#include "tests/sweep/Trial.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <stdexcept>

#include "tests/sweep/Explanations.h"

namespace {

constexpr auto GIVES_UP = "Exception is caught in main \n";
constexpr std::array LINK_LOSSES{"Error after receiving json from local tcp,socket closed",
                                 "Unexpected received FIN of local tcp connection,socket closed",
                                 "Error on attempt to connect to local tcp server "};

/// Standard streams, listening socket, RTOS socket.
constexpr std::size_t OWN_DESCRIPTORS = 5;

bool tellsLossOfLink(const std::string& errors) {
    return std::any_of(LINK_LOSSES.begin(), LINK_LOSSES.end(),
                       [&](const char* loss) { return errors.find(loss) != std::string::npos; });
}

std::vector<std::string> dataFiles(const FlashFiles& flash) {
    std::vector<std::string> names = flash.names();
    std::erase_if(names, [](const std::string& name) { return !name.starts_with("new_"); });
    return names;
}

std::string lastLineOf(const std::string& text) {
    const std::string lines = text.substr(0, text.find_last_not_of('\n') + 1);
    return lines.substr(lines.rfind('\n') + 1);
}

/// One run of the service with one fault.
class Trial {
public:
    Trial(const FlashFiles& flash, Device& device, Fault fault)
        : _flash(flash),
          _device(device),
          _fault(std::move(fault)),
          _service(_fault.site.program, _fault) {}

    Verdict run() {
        const bool hasStarted = _service.waitUntilListening();
        if (hasStarted) {
            _play();
        }
        if (!_service.isAlive()) {
            _judgeEnd();
        } else if (!hasStarted) {
            _add("runs, but does not listen");
        } else {
            _playWithoutFault();
        }
        return _verdict();
    }

private:
    void _play() {
        _first = story::play(_service, _device);
        _add(_first.deviations);
        if (_service.isAlive() && !_service.isAtRest()) {
            _add("a thread left over");
        }
        _service.stopCounting();
    }

    void _judgeEnd() {
        // What the requests came to does not matter then.
        _deviations.clear();
        _hasEnded = true;
        const bool isSaid = _fault.site.program == DAEMON || _service.errors().ends_with(GIVES_UP);
        if (_service.status() != 0 || _fault.site.thread != 0 || !isSaid) {
            _add("ended with status " + std::to_string(_service.status()) + ": " +
                 lastLineOf(_service.errors()));
        }
    }

    void _playWithoutFault() {
        const story::Result second = story::play(_service, _device);
        _add(second.deviations, "later: ");
        _countLeftovers();
        _isLinkLost =
            second.lost > 0 && _fault.site.call != ALLOCATION && tellsLossOfLink(_service.errors());
        if (second.lost > 0 && !_isLinkLost) {
            _add("later: requests lost");
        }
        if (_isLinkLost) {
            _playWithNewService();
        } else if (!dataFiles(_flash).empty()) {
            _add("a data file left over");
        }
    }

    void _playWithNewService() {
        _service.kill();
        SweptService next(FOREGROUND);
        if (!next.waitUntilListening()) {
            _add("the next service does not listen");
            return;
        }
        const story::Result third = story::play(next, _device);
        _add(third.deviations, "after a restart: ");
        if (third.lost > 0) {
            _add("after a restart: requests lost");
        }
    }

    void _countLeftovers() {
        if (!_service.isAtRest()) {
            _add("a thread left over");
        }
        // The number of a descriptor that close "failed" on is kept by the sweep.
        const std::size_t allowed = OWN_DESCRIPTORS + (_fault.site.call == "close" ? 1 : 0);
        if (!eventually([&] { return _service.info().descriptors().size() <= allowed; },
                        std::chrono::seconds(10))) {
            _add("a descriptor left over");
        }
    }

    void _add(const Deviation& deviation, const std::string& when = {}) {
        _deviations.push_back(when + deviation);
    }
    void _add(const std::vector<Deviation>& deviations, const std::string& when = {}) {
        for (const Deviation& deviation : deviations) {
            _add(deviation, when);
        }
    }

    Verdict _verdict() {
        std::string reasons;
        std::string open;
        _fault.target = _service.gate().target();
        for (const Deviation& deviation : _deviations) {
            if (const char* reason = explanationOf(_fault, deviation)) {
                reasons = reason;
            } else {
                open += deviation + "\n";
            }
        }
        if (!_service.hasMetFault()) {
            return {End::NOT_MET, open};
        }
        if (!open.empty()) {
            return {End::UNEXPLAINED, (_fault.target.empty() ? "" : "of " + _fault.target + "\n") +
                                          open + "log:\n" + _service.errors()};
        }
        if (!reasons.empty()) {
            return {End::EXPLAINED, reasons};
        }
        return {_hasEnded         ? End::NOT_STARTED
                : _isLinkLost     ? End::LINK_LOST
                : _first.lost > 0 ? End::REQUEST_LOST
                                  : End::SERVED};
    }

    const FlashFiles& _flash;
    Device& _device;
    Fault _fault;
    SweptService _service;
    story::Result _first;
    std::vector<Deviation> _deviations;
    bool _hasEnded = false;
    bool _isLinkLost = false;
};

/// Whether the kernel ever answers so, given how the service asks.
bool canMeet(const Site& site, int error) {
    // Only the RTOS link has a time-out for receiving, only clients are sent to without waiting.
    constexpr int WORKER = 1;
    return error != EAGAIN || (site.call == "recvfrom" && site.thread == WORKER) ||
           (site.call == "sendto" && site.thread != WORKER) ||
           (site.call != "recvfrom" && site.call != "sendto");
}

void addFaults(const Site& site, const FailingCall& call, std::vector<Fault>& faults) {
    for (const int error : call.errors) {
        if (canMeet(site, error)) {
            faults.push_back({site, error});
        }
    }
    if (call.canBeShort) {
        faults.push_back({site, 0});
    }
}

}  // namespace

const char* nameOf(End end) {
    static constexpr std::array<const char*, ENDS> NAMES{"served",      "request lost", "link lost",
                                                         "not started", "explained",    "not met",
                                                         "UNEXPLAINED"};
    return NAMES.at(static_cast<std::size_t>(end));
}

Verdict Stage::tryOut(const Fault& fault) {
    _clearDataFiles();
    return Trial(_flash, _device, fault).run();
}

std::vector<Fault> Stage::findFaults() {
    std::vector<Fault> faults;
    _collect(FOREGROUND, faults);
    _collect(DAEMON, faults);
    return faults;
}

void Stage::_collect(const std::string& program, std::vector<Fault>& faults) {
    SweptService service(program);
    if (!service.waitUntilListening()) {
        throw std::runtime_error(program + " does not start: " + service.errors());
    }
    const story::Result result = story::play(service, _device);
    if (result.lost > 0 || !result.deviations.empty() || !service.isAtRest()) {
        throw std::runtime_error(
            program + " does not serve: " +
            (result.deviations.empty() ? service.errors() : result.deviations.front()));
    }
    service.stopCounting();
    for (const long call : service.gate().unknownCalls()) {
        throw std::runtime_error(program + " makes system call " + std::to_string(call) +
                                 ", which the sweep does not know");
    }
    const SharedPage& page = service.page();
    for (const auto& [who, count] : service.gate().counts()) {
        const auto& [thread, call] = who;
        for (long occurrence = 1; occurrence <= count; ++occurrence) {
            addFaults({program, thread, std::string(call->name), occurrence}, *call, faults);
        }
    }
    for (int thread = 0; thread < page.threads; ++thread) {
        const long count = page.allocations.at(static_cast<std::size_t>(thread));
        for (long number = 1; number <= count; ++number) {
            faults.push_back({{program, thread, ALLOCATION, number}, ENOMEM});
        }
    }
}

void Stage::_clearDataFiles() const {
    for (const std::string& name : dataFiles(_flash)) {
        std::filesystem::remove("/tmp/FL0/" + name);
    }
}
