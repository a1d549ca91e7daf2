// Input: an answer of the RTOS, then list.json, reticle/1 and reticle/2 of the shared storage.
#include <exception>

#include "commands/JsonNetBuilder.h"
#include "processing/JsonRetriever.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/support/FlashFiles.h"

namespace reticled {
namespace {

std::string buildReply(const std::string& answer) {
    JsonNetBuilder builder;
    builder.reset();
    static_cast<void>(builder.setResult(answer));
    builder.fillReticles(answer);
    builder.finish();
    return builder.getResponse();
}

}  // namespace
}  // namespace reticled

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const FlashFiles flash;
    const auto parts = toParts(toText(data, size), 4);
    flash.write("list.json", parts[1]);
    flash.write("reticle/1", parts[2]);
    flash.write("reticle/2", parts[3]);
    try {
        require(reticled::JsonRetriever::isJson(reticled::buildReply(parts[0])), "a reply is JSON");
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): no reply, as in the worker
    }
    return 0;
}
