// Input: how the rest is cut into pieces (one byte), then all that the service sends to the device.
#include <algorithm>
#include <iostream>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/base/EscapedText.h"
#include "simulator/device/FaultyDevice.h"
#include "simulator/events/EventJson.h"
#include "simulator/events/EventText.h"
#include "simulator/events/ObservedDevice.h"
#include "simulator/link/RequestSplitter.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/support/FlashFiles.h"

namespace {

constexpr std::size_t MAX_RETICLES = 4;
/// More of them in one input only cost time.
constexpr std::size_t MAX_REQUESTS = 16;

std::vector<std::string> split(std::string_view stream, std::uint8_t seed) {
    std::minstd_rand random(seed + 1U);
    sim::RequestSplitter splitter;
    std::vector<std::string> requests;
    while (!stream.empty() && requests.size() < MAX_REQUESTS) {
        const std::size_t size = 1 + random() % stream.size();
        splitter.feed(stream.substr(0, size));
        stream.remove_prefix(size);
        while (std::optional<std::string> request = splitter.next()) {
            require(!request->empty(), "a request has bytes");
            requests.push_back(*std::move(request));
        }
    }
    return requests;
}

/// A device that starts anew for each input, so that an input does the same each time.
void answerAll(const std::vector<std::string>& requests) {
    const FlashFiles flash;
    flash.write("new_reticle_data0", "<svg/>");
    sim::Storage storage("/tmp/FL0");
    storage.save(
        {{0, "Dot", "user-0", "red", true, false}, {1, "Ring", "user-1", "", false, true}});
    sim::Device device(storage, {.reticles = MAX_RETICLES});
    sim::FaultyDevice faulty(device, storage, {});
    sim::EventStream events;
    events.subscribe([](const sim::Event& event) {
        require(sim::isPlainText(sim::eventJson(event)), "an event is plain text");
        std::cerr << sim::eventText(event) << '\n';
    });
    sim::ObservedDevice exchanges(
        [&faulty](const std::string& request) { return faulty.exchange(request); }, events);
    for (std::size_t i = 0; i < std::min(requests.size(), MAX_REQUESTS); ++i) {
        const sim::Delivery delivery = exchanges.exchange(requests[i]);
        require(delivery.bytes.size() <= sim::MAX_ANSWER_BYTES, "an answer fits");
    }
    require(device.reticles().size() <= MAX_RETICLES, "the device holds what it can");
    require(storage.load() == device.reticles(), "the storage has the device's state");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 0) {
        const std::vector<std::string> requests = split(toText(data + 1, size - 1), data[0]);
        if (!requests.empty()) {
            answerAll(requests);
        }
    }
    return 0;
}
