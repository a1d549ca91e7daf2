#include "tests/examples/InstalledLibrary.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "tests/system/Process.h"
#include "tests/system/Programs.h"

namespace fs = std::filesystem;

namespace {

const std::string COMPILER{CXX_COMPILER_PROGRAM};
const std::string STANDARD = "-std=c++17";

// A compiler on a busy machine; only a failing test waits this long.
constexpr std::chrono::minutes BUILD_PATIENCE{4};

std::string outputOf(const std::vector<std::string>& command, const std::string& input = {}) {
    Process process(command, input);
    const std::optional<int> status = process.waitForEnd(BUILD_PATIENCE);
    if (status != 0) {
        throw std::runtime_error(command.front() + " failed:\n" + process.standardOutput() +
                                 process.standardError());
    }
    return process.standardOutput();
}

std::vector<std::string> wordsOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

fs::path directoryOf(const std::string& fileName, const std::string& tree) {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(tree)) {
        if (entry.path().filename() == fileName) {
            return entry.path().parent_path();
        }
    }
    throw std::runtime_error(fileName + " is not installed");
}

}  // namespace

InstalledLibrary::InstalledLibrary() : _prefix("/tmp/installed") {
    outputOf({CMAKE_PROGRAM, "--install", programs::BUILD_DIRECTORY, "--component", "client-dev",
              "--prefix", _prefix});
}

InstalledLibrary::~InstalledLibrary() {
    std::error_code ignored;
    fs::remove_all(_prefix, ignored);
}

std::vector<std::string> InstalledLibrary::files() const {
    std::vector<std::string> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(_prefix)) {
        if (!entry.is_directory()) {
            files.push_back(entry.path().lexically_relative(_prefix));
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

void InstalledLibrary::buildWithCMake(const std::string& project,
                                      const std::string& buildDirectory) const {
    outputOf({CMAKE_PROGRAM, "-S", project, "-B", buildDirectory, "-DCMAKE_PREFIX_PATH=" + _prefix,
              "-DCMAKE_CXX_COMPILER=" + COMPILER});
    outputOf({CMAKE_PROGRAM, "--build", buildDirectory});
}

void InstalledLibrary::buildWithPkgConfig(const std::string& source,
                                          const std::string& program) const {
    const std::string searchPath =
        "PKG_CONFIG_PATH=" + directoryOf("reticle-client.pc", _prefix).string();
    const std::vector<std::string> flags = wordsOf(
        outputOf({"env", searchPath, "pkg-config", "--cflags", "--libs", "reticle-client"}));
    std::vector<std::string> command{COMPILER, STANDARD, source, "-o", program};
    command.insert(command.end(), flags.begin(), flags.end());
    outputOf(command);
}

void InstalledLibrary::compile(const std::string& code) const {
    outputOf({COMPILER, STANDARD, "-fsyntax-only", "-I", _prefix + "/include", "-x", "c++", "-"},
             code);
}
