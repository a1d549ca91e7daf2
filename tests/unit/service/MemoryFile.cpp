#include "tests/unit/service/MemoryFile.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>

MemoryFile::MemoryFile() : _file(memfd_create("output", MFD_CLOEXEC), "memfd_create") {}

std::string MemoryFile::content() const {
    constexpr std::size_t CHUNK_BYTES = 65536;
    std::string content;
    std::array<char, CHUNK_BYTES> chunk{};
    ssize_t count = 0;
    // Not read(): writers share the descriptor's position.
    while ((count = pread(_file.get(), chunk.data(), chunk.size(),
                          static_cast<off_t>(content.size()))) > 0) {
        content.append(chunk.data(), static_cast<std::size_t>(count));
    }
    return content;
}
