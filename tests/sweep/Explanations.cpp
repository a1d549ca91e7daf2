#include "tests/sweep/Explanations.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

constexpr std::string_view ANY;

struct Explanation {
    std::string_view call;
    std::string_view thread;  ///< how its name starts
    std::string_view target;  ///< how it starts
    std::string_view deviation;
    const char* reason;
};

constexpr auto LIST_FILE = "/tmp/FL0/list";
constexpr auto RETICLE_FILES = "/tmp/FL0/reticle/";
constexpr auto DATA_FILES = "/tmp/FL0/new_reticle_data";

constexpr auto NO_LIST = "a list file that cannot be read is empty, and says so";
constexpr auto NO_RETICLE = "a reticle file that cannot be read is left out";
constexpr auto NO_DATA =
    "a data file that cannot be written is sent all the same: the RTOS's answer tells";
constexpr auto NO_NAMES = "there is no memory before main";

constexpr std::array EXPLANATIONS{
    Explanation{"openat", "worker", LIST_FILE, "no list", NO_LIST},
    Explanation{"read", "worker", LIST_FILE, "no list", NO_LIST},
    Explanation{"openat", "worker", RETICLE_FILES, "a reticle left out", NO_RETICLE},
    Explanation{"read", "worker", RETICLE_FILES, "a reticle left out", NO_RETICLE},
    Explanation{"openat", "worker", DATA_FILES, "no data file", NO_DATA},
    Explanation{"write", "worker", DATA_FILES, "no data file", NO_DATA},
    Explanation{"writev", "worker", DATA_FILES, "no data file", NO_DATA},
    Explanation{ALLOCATION, "main", ANY, "ended with status 134:   what():  std::bad_alloc",
                NO_NAMES},
};

bool explains(const Explanation& explanation, const Fault& fault, const Deviation& deviation) {
    return explanation.call == fault.site.call &&
           threadName(fault.site.thread).starts_with(explanation.thread) &&
           fault.target.starts_with(explanation.target) && deviation == explanation.deviation;
}

}  // namespace

const char* explanationOf(const Fault& fault, const Deviation& deviation) {
    const auto* found = std::find_if(
        EXPLANATIONS.begin(), EXPLANATIONS.end(),
        [&](const Explanation& explanation) { return explains(explanation, fault, deviation); });
    return found == EXPLANATIONS.end() ? nullptr : found->reason;
}
