#include "tests/unit/service/DescriptorLimit.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <iterator>
#include <system_error>

#include "tests/support/FileDescriptor.h"

std::size_t openDescriptors() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    // One of them is the iterator's own.
    return static_cast<std::size_t>(std::distance(begin(all), end(all))) - 1;
}

NoSpareDescriptor::NoSpareDescriptor() {
    // The lowest free number is the first that the limit must exclude.
    FileDescriptor lowestFree(dup(STDERR_FILENO), "dup");
    getrlimit(RLIMIT_NOFILE, &_original);
    const rlimit limit{static_cast<rlim_t>(lowestFree.get()), _original.rlim_max};
    if (setrlimit(RLIMIT_NOFILE, &limit) < 0) {
        throw std::system_error(errno, std::generic_category(), "limit the descriptors");
    }
}

NoSpareDescriptor::~NoSpareDescriptor() {
    setrlimit(RLIMIT_NOFILE, &_original);
}
