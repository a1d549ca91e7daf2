#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace sim::test {

/// A directory of its own for one test; gone with this object.
class TemporaryRoot {
public:
    TemporaryRoot();
    ~TemporaryRoot();
    TemporaryRoot(const TemporaryRoot&) = delete;
    TemporaryRoot(TemporaryRoot&&) = delete;
    TemporaryRoot& operator=(const TemporaryRoot&) = delete;
    TemporaryRoot& operator=(TemporaryRoot&&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return _path; }

    /// The whole file; `name` is relative to the root. A missing file fails the test.
    [[nodiscard]] std::string read(const std::string& name) const;

    void write(const std::string& name, const std::string& text) const;

    [[nodiscard]] bool has(const std::string& name) const;

    /// The names in reticle/, sorted.
    [[nodiscard]] std::vector<std::string> reticleFiles() const;

private:
    std::filesystem::path _path;
};

}  // namespace sim::test
