#include "simulator/base/Files.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace sim {

namespace {

constexpr const char* ASIDE_SUFFIX = ".aside";

}  // namespace

fs::path aside(fs::path path) {
    return path += ASIDE_SUFFIX;
}

void replaceFile(const fs::path& path, std::string_view text) {
    std::ofstream file(aside(path), std::ios::binary | std::ios::trunc);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + aside(path).string());
    }
    fs::rename(aside(path), path);
}

std::optional<std::string> readFile(const fs::path& path) {
    std::error_code error;
    // Only regular files: to open a pipe would hold the reader up for ever.
    if (!fs::is_regular_file(path, error)) {
        return std::nullopt;
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    std::ostringstream text;
    // An empty file gives the stream nothing to insert, which it takes for a failure.
    if (file.peek() != std::ifstream::traits_type::eof()) {
        text << file.rdbuf();
    }
    return std::move(text).str();
}

bool staysInside(const std::string& name) {
    const fs::path path(name);
    return !name.empty() && path.is_relative() &&
           name.find_first_of(std::string("\0\n", 2)) == std::string::npos &&
           std::find(path.begin(), path.end(), "..") == path.end();
}

}  // namespace sim
