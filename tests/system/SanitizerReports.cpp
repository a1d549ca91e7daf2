#include "tests/system/SanitizerReports.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/support/Text.h"

namespace fs = std::filesystem;

namespace {

const std::string DIRECTORY = "/tmp/sanitizer";
const std::string SUPPRESSIONS = "/tmp/sanitizer-suppressions";

// By design a reply names its client by the descriptor's number alone, and the client's reader
// thread may close it at any time. To the thread sanitizer that is a race on the descriptor,
// between its closing or its next owner and the copy that the sender makes.
constexpr auto DESCRIPTOR_RACES = "race_top:close\nrace_top:dup\n";

// Keeps options that the caller of the test run has set.
void addOption(const char* variable, const std::string& option) {
    const char* present = std::getenv(variable);
    const std::string options = present == nullptr ? "" : present;
    if (options.find(option) == std::string::npos) {
        setenv(variable, (options.empty() ? option : options + ":" + option).c_str(), 1);
    }
}

}  // namespace

SanitizerReports::SanitizerReports() {
    fs::remove_all(DIRECTORY);
    fs::create_directory(DIRECTORY);
    // Services that a test runs as another user must be able to report as well.
    fs::permissions(DIRECTORY, fs::perms::all);
    for (const char* variable : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"}) {
        addOption(variable, "log_path=" + DIRECTORY + "/report");
    }
    // The daemon itself never ends by itself; its two starters would be checked, while the test goes on.
    addOption("ASAN_OPTIONS", "detect_leaks=0");
    std::ofstream(SUPPRESSIONS) << DESCRIPTOR_RACES;
    addOption("TSAN_OPTIONS", "suppressions=" + SUPPRESSIONS);
    // The service has no handler but the one that writes its counts of coverage.
    addOption("TSAN_OPTIONS", "report_signal_unsafe=0");
}

std::string SanitizerReports::text() const {
    std::string text;
    for (const fs::directory_entry& entry : fs::directory_iterator(DIRECTORY)) {
        text += contentOfFile(entry.path());
    }
    return text;
}
