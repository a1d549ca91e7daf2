#pragma once

#include <string>

/// Owns one descriptor and closes it.
class FileDescriptor {
public:
    FileDescriptor() = default;

    /// Takes over `descriptor`, the result of the system call that `purpose` describes.
    /// \throws std::system_error naming `purpose` when the call had failed (a negative result).
    FileDescriptor(int descriptor, const std::string& purpose);

    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    FileDescriptor(FileDescriptor&& other) noexcept;
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    ~FileDescriptor();

    [[nodiscard]] int get() const { return _descriptor; }
    [[nodiscard]] bool isOpen() const { return _descriptor >= 0; }
    void close();

private:
    int _descriptor = -1;
};
