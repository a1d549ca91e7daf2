#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

/// A directory for a browser that goes with this object.
class ScratchDirectory {
public:
    ScratchDirectory() {
        std::string pattern = "/tmp/chromium-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no directory for the browser");
        }
        _path = pattern;
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;
    ~ScratchDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(_path, ignored);
    }

    [[nodiscard]] const std::string& path() const { return _path; }

private:
    std::string _path;
};
