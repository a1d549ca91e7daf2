#include "tests/unit/simulator/TemporaryRoot.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace sim::test {

TemporaryRoot::TemporaryRoot() {
    std::string pattern = (fs::temp_directory_path() / "rtos-sim-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("cannot make a directory like " + pattern);
    }
    _path = fs::canonical(pattern);
}

TemporaryRoot::~TemporaryRoot() {
    std::error_code ignored;
    fs::remove_all(_path, ignored);
}

std::string TemporaryRoot::read(const std::string& name) const {
    std::ifstream file(_path / name, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << name;
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void TemporaryRoot::write(const std::string& name, const std::string& text) const {
    std::ofstream file(_path / name, std::ios::binary);
    file << text;
    EXPECT_TRUE(file.good()) << name;
}

bool TemporaryRoot::has(const std::string& name) const {
    return fs::exists(_path / name);
}

std::vector<std::string> TemporaryRoot::reticleFiles() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(_path / "reticle")) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace sim::test
