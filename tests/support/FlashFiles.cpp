#include "tests/support/FlashFiles.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "tests/support/Text.h"

namespace fs = std::filesystem;

namespace {

const std::string ROOT = "/tmp/FL0/";

}  // namespace

FlashFiles::FlashFiles() {
    remove();
    fs::create_directories(ROOT + "reticle");
}

FlashFiles::~FlashFiles() {
    std::error_code ignored;
    fs::remove_all(ROOT, ignored);
}

void FlashFiles::write(const std::string& name, std::string_view content) const {
    fs::create_directories(fs::path(ROOT + name).parent_path());
    std::ofstream file(ROOT + name, std::ios::binary | std::ios::trunc);
    file << content;
    if (!file.flush()) {
        throw std::runtime_error("cannot write " + ROOT + name);
    }
}

bool FlashFiles::exists(const std::string& name) const {
    return fs::exists(ROOT + name);
}

std::string FlashFiles::read(const std::string& name) const {
    return contentOfFile(ROOT + name);
}

std::vector<std::string> FlashFiles::names() const {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(ROOT)) {
        if (entry.is_regular_file()) {
            names.push_back(entry.path().filename());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

void FlashFiles::remove() const {
    fs::remove_all(ROOT);
}
