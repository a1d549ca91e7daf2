#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The storage that service and RTOS share: /tmp/FL0/ of the sandbox, empty but for an empty
/// reticle/ directory when this object is made, gone when it goes.
class FlashFiles {
public:
    FlashFiles();
    FlashFiles(const FlashFiles&) = delete;
    FlashFiles& operator=(const FlashFiles&) = delete;
    ~FlashFiles();

    /// Writes a file, its directories as well. `name` is relative to /tmp/FL0/ ("list.json",
    /// "reticle/dot.svg").
    void write(const std::string& name, std::string_view content) const;

    [[nodiscard]] bool exists(const std::string& name) const;
    /// The file's bytes; empty when there is no such file.
    [[nodiscard]] std::string read(const std::string& name) const;
    /// Names of all files directly in /tmp/FL0/, in order; directories left out.
    [[nodiscard]] std::vector<std::string> names() const;

    /// Takes /tmp/FL0/ away altogether.
    void remove() const;
};
