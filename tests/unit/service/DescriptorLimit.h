#pragma once

#include <sys/resource.h>

#include <cstddef>

/// Descriptors of this process that are open.
[[nodiscard]] std::size_t openDescriptors();

/// While it lives, this process can open no further descriptor (EMFILE).
class NoSpareDescriptor {
public:
    /// \throws std::system_error when the limit cannot be set.
    NoSpareDescriptor();
    NoSpareDescriptor(const NoSpareDescriptor&) = delete;
    NoSpareDescriptor& operator=(const NoSpareDescriptor&) = delete;
    ~NoSpareDescriptor();

private:
    rlimit _original{};
};
