// What texts cost that are made to cost: time grows as their size does.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <exception>
#include <iterator>
#include <string>
#include <vector>

#include "commands/JsonRtosBuilderAddOrUpdate.h"
#include "commands/JsonRtosBuilderDelete.h"
#include "processing/JsonRetriever.h"
#include "tests/support/FlashFiles.h"
#include "tests/support/HostileTexts.h"
#include "tests/unit/service/OutputCapture.h"

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

namespace reticled {
namespace {

using std::chrono::nanoseconds;

constexpr std::size_t SMALL_BYTES = 64UL * 1024;
constexpr std::size_t GROWTH = 16;
/// Between 16 for linear and 256 for quadratic time, as far from both.
constexpr double MAX_COST_GROWTH = 64;
/// A busy machine only ever makes a measurement longer: the shortest of several counts.
constexpr int ATTEMPTS = 5;

/// Processor time of this thread alone.
nanoseconds threadTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
}

/// All the RTOS requests that `Builder` makes of a body.
template <class Builder>
std::vector<std::string> requestsOf(const std::string& text) {
    Builder builder;
    builder.reset();
    builder.build(text);
    builder.finish();
    return builder.getRequests();
}

/// All that the service does with a body but talk to the RTOS, whatever the body asks for.
void handle(const std::string& text) {
    static_cast<void>(JsonRetriever::isJson(text));
    static_cast<void>(requestsOf<JsonRtosBuilderDelete>(text));
    static_cast<void>(requestsOf<JsonRtosBuilderAddOrUpdate>(text));
    try {
        static_cast<void>(JsonRetriever::getStrVal(text, ACTION));
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): no request
    }
}

nanoseconds costOf(const std::string& text) {
    const OutputCapture output;
    const nanoseconds start = threadTime();
    handle(text);
    return threadTime() - start;
}

std::vector<HostileText> everyKind(std::size_t bytes) {
    std::vector<HostileText> all = hostileTexts(bytes);
    std::ranges::move(hostileChanges(bytes), std::back_inserter(all));
    return all;
}

/// How many times the cost of `small` that of `large` is.
double costGrowth(const std::string& small, const std::string& large) {
    nanoseconds smallCost = nanoseconds::max();
    nanoseconds largeCost = nanoseconds::max();
    double growth = 0;
    for (int attempt = 0; attempt < ATTEMPTS; ++attempt) {
        smallCost = std::min(smallCost, costOf(small));
        largeCost = std::min(largeCost, costOf(large));
        growth = static_cast<double>(largeCost.count()) / static_cast<double>(smallCost.count());
        if (growth < MAX_COST_GROWTH) {
            break;
        }
    }
    return growth;
}

TEST(HostileCostTest, GrowsAsTheTextDoes) {
    const FlashFiles flash;
    const auto small = everyKind(SMALL_BYTES);
    const auto large = everyKind(SMALL_BYTES * GROWTH);
    // Told at the end: after a failure each output that was captured would be shown.
    std::vector<std::string> tooDear;
    for (std::size_t i = 0; i < small.size(); ++i) {
        if (costGrowth(small[i].text, large[i].text) >= MAX_COST_GROWTH) {
            tooDear.emplace_back(small[i].kind);
        }
    }
    EXPECT_EQ(tooDear, std::vector<std::string>{});
}

TEST(HostileCostTest, TextsAreWhatTheyAreSaidToBe) {
    const OutputCapture output;
    for (const HostileText& hostile : everyKind(SMALL_BYTES)) {
        const std::string text = hostile.text.substr(0, hostile.text.find('\0'));
        EXPECT_EQ(JsonRetriever::isJson(text), hostile.firstRequest != HostileText::Request::NONE)
            << hostile.kind;
    }
}

TEST(HostileCostTest, ChangesAskForAsMuchAsTheirTextsHold) {
    std::vector<std::string> counts;
    {
        const OutputCapture output;
        const FlashFiles flash;
        for (const HostileText& hostile : everyKind(1024)) {
            const std::size_t deletions = requestsOf<JsonRtosBuilderDelete>(hostile.text).size();
            const std::size_t additions =
                requestsOf<JsonRtosBuilderAddOrUpdate>(hostile.text).size();
            if (deletions + additions > 0) {
                counts.push_back(std::string(hostile.kind) + ": " + std::to_string(deletions) +
                                 " deletions, " + std::to_string(additions) + " additions");
            }
        }
    }
    EXPECT_EQ(counts, (std::vector<std::string>{"many indices: 492 deletions, 0 additions",
                                                "many records: 0 deletions, 42 additions"}));
}

}  // namespace
}  // namespace reticled

#endif
