#include "tests/system/SanitizerReports.h"

#include <cstdlib>
#include <filesystem>

#include "tests/system/Text.h"

namespace fs = std::filesystem;

namespace {

const std::string DIRECTORY = "/tmp/sanitizer";

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
}

std::string SanitizerReports::text() const {
    std::string text;
    for (const fs::directory_entry& entry : fs::directory_iterator(DIRECTORY)) {
        text += contentOfFile(entry.path());
    }
    return text;
}
