#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace reticled {

/// The bytes of a file. Not a std::string, which would write them all before they are read.
struct FileContent {
    [[nodiscard]] std::string_view text() const { return {bytes.get(), size}; }

    std::unique_ptr<char[]> bytes;  // NOLINT(*-avoid-c-arrays)
    std::size_t size = 0;
};

/// Reads a file on the shared storage up to the size that it has now, byte for byte.
///
/// A file that is missing, unreadable or a directory is not an error but empty: the RTOS may have
/// removed it. Nothing is locked: of a file that is being rewritten come whatever bytes are read.
/// Blocks on a FIFO until it has had a writer.
/// \throws std::bad_alloc
[[nodiscard]] FileContent readStorageFile(const std::string& path);

}  // namespace reticled
