#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace sim {

/// A file below the root that was written or removed.
struct FileChange {
    std::string name;                  ///< relative to the root
    std::optional<std::size_t> bytes;  ///< its size; none when it was removed
};

/// Called right after each change, on the thread that made it. Must not throw.
using FileObserver = std::function<void(const FileChange& change)>;

}  // namespace sim
