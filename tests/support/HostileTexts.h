#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// Texts that are made to cost a reader time or memory. Those that are JSON are requests for the list, so
/// that the service takes them all the way.
struct HostileText {
    /// What it is made of, for messages.
    const char* kind;
    std::string text;
    bool isRequest;  ///< whether the service takes it for one; otherwise it is refused as not JSON
};

/// One of each kind, each as long as fits into `bytes`, at least a kilobyte.
[[nodiscard]] std::vector<HostileText> hostileTexts(std::size_t bytes);
