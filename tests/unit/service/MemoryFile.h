#pragma once

#include <string>

#include "tests/support/FileDescriptor.h"

/// A file without a name that grows as it is written: takes the output of this process or of a
/// child.
class MemoryFile {
public:
    /// \throws std::system_error when there is no descriptor left.
    MemoryFile();

    [[nodiscard]] int descriptor() const { return _file.get(); }

    /// All that has been written so far.
    [[nodiscard]] std::string content() const;

private:
    FileDescriptor _file;
};
