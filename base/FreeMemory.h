#pragma once

#include <cstddef>

namespace reticled {

/// From this size on, what is left of the work on a client's text is worth giving back: while it is parsed, a text
/// takes many times its size.
inline constexpr std::size_t LARGE_TEXT_BYTES = 16384;

/// From this size on, the allocator maps a block by itself, and gives it back when it is freed.
inline constexpr int RETURNED_BLOCK_BYTES = 4 * 1024 * 1024;

/// Free memory that the service keeps for the next command: getting pages costs more than the work on them.
inline constexpr int KEPT_FREE_BYTES = 4 * 1024 * 1024;

/// Gives free memory back to the system when it is destroyed, where the work that ends then was on a large text. The
/// allocator by itself keeps it for good, as many small pieces.
///
/// Make it before whatever the work takes memory for. Any thread.
class FreeMemoryReturn {
public:
    explicit FreeMemoryReturn(std::size_t textBytes)
        : _isLargeText(textBytes >= LARGE_TEXT_BYTES) {}
    FreeMemoryReturn(const FreeMemoryReturn&) = delete;
    FreeMemoryReturn& operator=(const FreeMemoryReturn&) = delete;
    ~FreeMemoryReturn();

private:
    bool _isLargeText;
};

}  // namespace reticled
