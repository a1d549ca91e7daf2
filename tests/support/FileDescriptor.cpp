#include "tests/support/FileDescriptor.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

FileDescriptor::FileDescriptor(int descriptor, const std::string& purpose)
    : _descriptor(descriptor) {
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), purpose);
    }
}

FileDescriptor::FileDescriptor(FileDescriptor&& other) noexcept
    : _descriptor(std::exchange(other._descriptor, -1)) {}

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    std::swap(_descriptor, other._descriptor);
    return *this;
}

FileDescriptor::~FileDescriptor() {
    close();
}

void FileDescriptor::close() {
    if (isOpen()) {
        ::close(std::exchange(_descriptor, -1));
    }
}
