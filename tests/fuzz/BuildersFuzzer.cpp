// Input: a client's request, given to every builder of RTOS requests.
#include <exception>
#include <string>
#include <vector>

#include "commands/JsonRtosBuilderAddOrUpdate.h"
#include "commands/JsonRtosBuilderDelete.h"
#include "commands/JsonRtosBuilderSetActive.h"
#include "processing/JsonRetriever.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/support/FlashFiles.h"

namespace reticled {
namespace {

void requireRtosRequest(const std::string& text, int firstMessage, int lastMessage) {
    const int message = JsonRetriever::getVal<int>(text, MSG_ID);
    require(JsonRetriever::isJson(text), "an RTOS request is JSON");
    require(message >= firstMessage && message <= lastMessage, "a builder sends its own messages");
}

void trySetActive(const std::string& request) {
    JsonRtosBuilderSetActive builder;
    builder.reset();
    try {
        builder.build(request);
    } catch (const std::exception&) {
        return;
    }
    builder.finish();
    requireRtosRequest(builder.getRequest(), RTOS_SET_ACTIVE_RETICLE, RTOS_SET_ACTIVE_RETICLE);
}

void tryDelete(const std::string& request) {
    JsonRtosBuilderDelete builder;
    builder.reset();
    builder.build(request);
    builder.finish();
    const std::vector<int> indices = JsonRetriever::getIntVector(request, INDICES);
    const std::vector<std::string> requests = builder.getRequests();
    require(requests.size() == indices.size(), "each index is one request");
    for (std::size_t i = 0; i < requests.size(); ++i) {
        requireRtosRequest(requests[i], RTOS_DELETE_RETICLE, RTOS_DELETE_RETICLE);
        require(JsonRetriever::getVal<int>(requests[i], PARAM) == indices[i],
                "a request deletes the index that was named");
    }
}

void tryAddOrUpdate(const std::string& request, const FlashFiles& flash) {
    JsonRtosBuilderAddOrUpdate builder;
    builder.reset();
    builder.build(request);
    builder.finish();
    const auto records = JsonRetriever::getReticleRecords(request, RETICLES);
    const std::vector<std::string> requests = builder.getRequests();
    require(requests.size() == records.size(), "each record is one request");
    for (std::size_t i = 0; i < requests.size(); ++i) {
        requireRtosRequest(requests[i], RTOS_ADD_RETICLE, RTOS_UPDATE_RETICLE);
        require(flash.read("new_reticle_data" + std::to_string(i)) == records[i].data,
                "a data file holds the record's data byte for byte");
    }
    builder.removeDataFiles();
    require(requests.empty() || flash.names().empty(), "no data file is left");
}

}  // namespace
}  // namespace reticled

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const FlashFiles flash;
    const std::string request = toText(data, size);
    reticled::trySetActive(request);
    reticled::tryDelete(request);
    reticled::tryAddOrUpdate(request, flash);
    return 0;
}
