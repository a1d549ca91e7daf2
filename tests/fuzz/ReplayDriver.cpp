#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/fuzz/FuzzTarget.h"
#include "tests/support/Text.h"

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> filesIn(const char* directory) {
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
        files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

void replay(const fs::path& file) {
    // Told before, so that the file is known which ends the process.
    std::printf("%s\n", file.c_str());
    static_cast<void>(std::fflush(stdout));
    const std::string bytes = contentOfFile(file);
    const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(input.data(), input.size());
}

}  // namespace

int driveFuzzTarget(int argc, char** argv) {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const fs::path& file : filesIn(argv[i])) {
            replay(file);
            ++count;
        }
    }
    std::printf("%zu inputs replayed\n", count);
    return count > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
