#pragma once

#include <string>

namespace reticled {

/// A file on the shared storage, open for reading from construction to destruction.
///
/// A file that cannot be opened or read is not an error but empty: the RTOS may have removed it.
class StorageFile {
public:
    /// Blocks on a FIFO until it has a writer.
    explicit StorageFile(const std::string& path);

    StorageFile(const StorageFile&) = delete;
    StorageFile& operator=(const StorageFile&) = delete;
    ~StorageFile();

    /// The content, byte for byte, up to the size that the file has now; "" for a file that is
    /// missing, unreadable or a directory. Nothing is locked: a file that is being rewritten yields
    /// whatever bytes are read. Call it once.
    [[nodiscard]] std::string readAll() const;

private:
    [[nodiscard]] std::size_t _announcedSize() const;

    int _descriptor;  ///< negative when the file could not be opened
};

}  // namespace reticled
