// What texts cost that are made to cost: time grows as their size does.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <exception>
#include <string>

#include "processing/JsonRetriever.h"
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

/// All that the service does with a body before it knows what it asks for, and the lenient getters.
void readAll(const std::string& text) {
    static_cast<void>(JsonRetriever::isJson(text));
    static_cast<void>(JsonRetriever::getIntVector(text, INDICES));
    static_cast<void>(JsonRetriever::getReticleRecords(text, RETICLES));
    try {
        static_cast<void>(JsonRetriever::getStrVal(text, ACTION));
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): no request
    }
}

nanoseconds costOf(const std::string& text) {
    const nanoseconds start = threadTime();
    readAll(text);
    return threadTime() - start;
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
    const OutputCapture output;
    const auto small = hostileTexts(SMALL_BYTES);
    const auto large = hostileTexts(SMALL_BYTES * GROWTH);
    for (std::size_t i = 0; i < small.size(); ++i) {
        EXPECT_LT(costGrowth(small[i].text, large[i].text), MAX_COST_GROWTH) << small[i].kind;
    }
}

TEST(HostileCostTest, TextsAreWhatTheyAreSaidToBe) {
    const OutputCapture output;
    for (const HostileText& hostile : hostileTexts(SMALL_BYTES)) {
        const std::string text = hostile.text.substr(0, hostile.text.find('\0'));
        EXPECT_EQ(JsonRetriever::isJson(text), hostile.isRequest) << hostile.kind;
    }
}

}  // namespace
}  // namespace reticled

#endif
