// Input: a text, as a client or the RTOS may send it.
#include <exception>
#include <string>
#include <vector>

#include "processing/JsonRetriever.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/fuzz/FuzzTarget.h"

namespace reticled {
namespace {

/// Calls a getter that reports what it cannot read, as the worker's loop would.
template <class Getter>
void callStrict(const Getter& getter) {
    try {
        static_cast<void>(getter());
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): no reply, nothing else
    }
}

void tryAll(const std::string& text) {
    const bool isJson = JsonRetriever::isJson(text);
    callStrict([&] { return JsonRetriever::getIntVal(text, INDEX); });
    callStrict([&] { return JsonRetriever::getStrVal(text, ACTION); });
    const int number = JsonRetriever::getVal<int>(text, RET_VAL);
    const std::string string = JsonRetriever::getVal<std::string>(text, PARAM);
    const std::vector<int> numbers = JsonRetriever::getIntVector(text, INDICES);
    const std::vector<ReticleRecord> records = JsonRetriever::getReticleRecords(text, RETICLES);
    require(isJson || (number == -1 && string.empty() && numbers.empty() && records.empty()),
            "the lenient getters find nothing in what is not JSON");
}

}  // namespace
}  // namespace reticled

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    reticled::tryAll(toText(data, size));
    return 0;
}
