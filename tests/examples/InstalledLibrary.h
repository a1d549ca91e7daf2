#pragma once

#include <string>
#include <vector>

/// The client library, installed into a directory of its own, and what developers do with it. The
/// directory is gone with this object.
class InstalledLibrary {
public:
    /// \throws std::runtime_error when it cannot be installed.
    InstalledLibrary();
    InstalledLibrary(const InstalledLibrary&) = delete;
    InstalledLibrary& operator=(const InstalledLibrary&) = delete;
    ~InstalledLibrary();

    /// Everything that was installed, relative to the installation's directory, in order.
    [[nodiscard]] std::vector<std::string> files() const;

    /// Builds `project`, a directory with a CMakeLists.txt, into `buildDirectory`.
    /// \throws std::runtime_error with the tools' output when it does not configure or build.
    void buildWithCMake(const std::string& project, const std::string& buildDirectory) const;

    /// Compiles and links one source with what pkg-config says.
    /// \throws std::runtime_error with the tools' output when that fails.
    void buildWithPkgConfig(const std::string& source, const std::string& program) const;

    /// Compiles `code` with the installation's include directory alone.
    /// \throws std::runtime_error with the compiler's output when that fails.
    void compile(const std::string& code) const;

private:
    std::string _prefix;
};
