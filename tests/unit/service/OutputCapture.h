#pragma once

#include <string>

#include "tests/support/FileDescriptor.h"
#include "tests/unit/service/MemoryFile.h"

/// Takes all that this process writes to standard output and standard error, by streams or by
/// perror, from construction to destruction. A test that has failed gets it back at the end, its
/// own report included.
///
/// Any thread may write and read meanwhile.
class OutputCapture {
public:
    /// What has been written so far.
    [[nodiscard]] std::string out() const { return _out.text(); }
    [[nodiscard]] std::string err() const { return _err.text(); }

private:
    class Stream {
    public:
        explicit Stream(int descriptor);
        Stream(const Stream&) = delete;
        Stream& operator=(const Stream&) = delete;
        ~Stream();

        [[nodiscard]] std::string text() const { return _taken.content(); }

    private:
        int _descriptor;
        FileDescriptor _original;
        MemoryFile _taken;
    };

    Stream _out{1};
    Stream _err{2};
};
