#include "simulator/device/FaultyDevice.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <ostream>
#include <stdexcept>
#include <utility>

#include "simulator/base/JsonText.h"
#include "simulator/link/RequestSplitter.h"

namespace sim {

namespace {

constexpr const char* GARBAGE = "}garbage{\xff\xfe";
constexpr const char* BAD_LIST = "no list of reticles\n";
constexpr const char* MISSING_FILE = "missing-file";
/// Longer than one answer, shorter than two: the rest is read as a second one.
constexpr std::size_t LONG_ANSWER_BYTES = MAX_ANSWER_BYTES + MAX_ANSWER_BYTES / 2;

void spoil(Delivery& delivery, const Fault& fault) {
    switch (fault.kind) {
        case FaultKind::LONG:
            // Blanks before the last bracket: the answer stays JSON, its length alone is wrong.
            delivery.bytes.insert(delivery.bytes.size() - 1,
                                  LONG_ANSWER_BYTES - delivery.bytes.size(), ' ');
            break;
        case FaultKind::GARBAGE:
            delivery.bytes = GARBAGE;
            break;
        case FaultKind::SPLIT:
            delivery.gap = std::chrono::milliseconds(fault.argument);
            break;
        case FaultKind::DELAY:
            delivery.delay = std::chrono::milliseconds(fault.argument);
            break;
        case FaultKind::SILENT:
            delivery.bytes.clear();
            break;
        case FaultKind::CLOSE:
            delivery.bytes.clear();
            delivery.end = Delivery::End::CLOSE;
            break;
        case FaultKind::RESET:
            delivery.bytes.clear();
            delivery.end = Delivery::End::RESET;
            break;
        default:  // the others spoil what the answer says, not how it travels
            break;
    }
}

/// \throws std::runtime_error that says on one line what is wrong with `request`.
Json::Value parse(const std::string& request) {
    if (request.size() > RequestSplitter::MAX_REQUEST_BYTES) {
        throw std::runtime_error("the request is longer than " +
                                 std::to_string(RequestSplitter::MAX_REQUEST_BYTES) + " bytes");
    }
    return parseJson(request);
}

/// What the service receives, and when, in words.
std::string describe(const Delivery& delivery) {
    std::string text = delivery.bytes.empty() ? "nothing" : delivery.bytes;
    if (delivery.delay.count() > 0) {
        text += ", after " + std::to_string(delivery.delay.count()) + " ms";
    }
    if (delivery.gap) {
        text += ", in two segments " + std::to_string(delivery.gap->count()) + " ms apart";
    }
    if (delivery.end != Delivery::End::KEEP_OPEN) {
        text += delivery.end == Delivery::End::CLOSE ? ", then FIN" : ", then RST";
    }
    return text;
}

/// `request` on one line: without its blanks, or quoted and not too long if it is not JSON.
std::string onOneLine(const std::string& request) {
    constexpr std::size_t MAX_SHOWN_BYTES = 1000;
    try {
        return compactJson(parse(request));
    } catch (const std::exception&) {
        return "not JSON: " + compactJson(request.substr(0, MAX_SHOWN_BYTES)) +
               (request.size() > MAX_SHOWN_BYTES
                    ? " ... (" + std::to_string(request.size()) + " bytes)"
                    : "");
    }
}

}  // namespace

FaultyDevice::FaultyDevice(Device& device, Storage& storage, std::vector<Fault> faults,
                           std::ostream& log, bool isVerbose)
    : _device(device),
      _storage(storage),
      _faults(std::move(faults)),
      _log(log),
      _isVerbose(isVerbose) {
    std::stable_sort(_faults.begin(), _faults.end(),
                     [](const Fault& left, const Fault& right) { return left.kind < right.kind; });
}

Delivery FaultyDevice::exchange(const std::string& request) {
    ++_count;
    std::vector<Fault> faults;
    std::copy_if(_faults.begin(), _faults.end(), std::back_inserter(faults),
                 [this](const Fault& fault) { return fault.hits(_count); });
    const Answer answer = _answer(request, faults);
    Delivery delivery;
    delivery.bytes = answerText(answer);
    for (const Fault& fault : faults) {
        spoil(delivery, fault);
    }
    // What makes no sense is a mistake of the service or of a test: nobody should have to look for
    // it.
    if (_isVerbose || (answer.retVal == UNKNOWN_ACTION && !answer.reason.empty())) {
        _tell(request, answer, delivery);
    }
    return delivery;
}

Answer FaultyDevice::_answer(const std::string& request, const std::vector<Fault>& faults) {
    for (const Fault& fault : faults) {
        if (fault.kind == FaultKind::REFUSE) {
            return {fault.argument, std::nullopt, ""};
        }
    }
    try {
        Answer answer = _device.answer(parse(request));
        if (answer.listFile) {
            for (const Fault& fault : faults) {
                _spoilList(answer, fault);
            }
        }
        return answer;
    } catch (const std::exception& error) {
        return {UNKNOWN_ACTION, std::nullopt, error.what()};
    }
}

void FaultyDevice::_spoilList(Answer& answer, const Fault& fault) {
    ReticleList shown = _device.reticles();
    switch (fault.kind) {
        case FaultKind::NO_PARAM:
            answer.listFile.reset();
            return;
        case FaultKind::BAD_LIST:
            _storage.writeFaultyList(BAD_LIST);
            break;
        case FaultKind::EMPTY_LIST:
            _storage.writeFaultyList(listText({}));
            break;
        case FaultKind::MISSING_FILE:
            if (!shown.empty()) {
                shown.front().fileName = MISSING_FILE;
            }
            _storage.writeFaultyList(listText(shown));
            break;
        default:
            return;
    }
    answer.listFile = Storage::FAULTY_LIST_FILE;
}

void FaultyDevice::_tell(const std::string& request, const Answer& answer,
                         const Delivery& delivery) {
    const std::string head = "rtos-sim: exchange " + std::to_string(_count) + ": ";
    _log << head << "request " << onOneLine(request) << '\n';
    if (!answer.reason.empty()) {
        _log << head << "refused, " << answer.reason << '\n';
    }
    _log << head << "answer " << describe(delivery) << std::endl;
}

}  // namespace sim
