#include "simulator/device/FaultyDevice.h"

#include <algorithm>
#include <exception>
#include <iterator>
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

bool isListFault(FaultKind kind) {
    return kind >= FaultKind::NO_PARAM && kind <= FaultKind::MISSING_FILE;
}

/// \throws std::runtime_error that says on one line what is wrong with `request`.
Json::Value parse(const std::string& request) {
    if (request.size() > RequestSplitter::MAX_REQUEST_BYTES) {
        throw std::runtime_error("the request is longer than " +
                                 std::to_string(RequestSplitter::MAX_REQUEST_BYTES) + " bytes");
    }
    return parseJson(request);
}

}  // namespace

FaultyDevice::FaultyDevice(Device& device, Storage& storage, const std::vector<Fault>& faults)
    : _device(device), _storage(storage) {
    for (const Fault& fault : faults) {
        arm(fault);
    }
}

Delivery FaultyDevice::exchange(const std::string& request) {
    ++_count;
    std::vector<Fault> faults;
    std::copy_if(_faults.begin(), _faults.end(), std::back_inserter(faults),
                 [this](const Fault& fault) { return fault.hits(_count); });
    std::erase_if(_faults, [this](const Fault& fault) { return fault.exchange == _count; });
    Answer answer = _answer(request, faults);
    Delivery delivery;
    delivery.bytes = answerText(answer);
    delivery.retVal = answer.retVal;
    delivery.reason = std::move(answer.reason);
    for (Fault& fault : faults) {
        spoil(delivery, fault);
        fault.exchange.reset();
    }
    delivery.faults = faultTexts(faults);
    return delivery;
}

void FaultyDevice::arm(const Fault& fault) {
    std::erase_if(_faults, [&fault](const Fault& armed) {
        return armed.kind == fault.kind && armed.exchange == fault.exchange;
    });
    const auto later = std::upper_bound(
        _faults.begin(), _faults.end(), fault,
        [](const Fault& left, const Fault& right) { return left.kind < right.kind; });
    _faults.insert(later, fault);
}

/// Leaves in `faults` those that concern this request.
Answer FaultyDevice::_answer(const std::string& request, std::vector<Fault>& faults) {
    Answer answer = _decide(request, faults);
    if (!answer.listFile) {
        std::erase_if(faults, [](const Fault& fault) { return isListFault(fault.kind); });
    }
    try {
        for (const Fault& fault : faults) {
            _spoilList(answer, fault);
        }
        return answer;
    } catch (const std::exception& error) {
        return {UNKNOWN_ACTION, std::nullopt, error.what()};
    }
}

Answer FaultyDevice::_decide(const std::string& request, const std::vector<Fault>& faults) {
    for (const Fault& fault : faults) {
        if (fault.kind == FaultKind::REFUSE) {
            return {fault.argument, std::nullopt, ""};
        }
    }
    try {
        return _device.answer(parse(request));
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

}  // namespace sim
