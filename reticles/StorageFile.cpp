#include "reticles/StorageFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace reticled {
namespace {

/// For files that do not know their size, as those of the kernel: read on in such steps.
constexpr std::size_t GROWTH_BYTES = 65536;

}  // namespace

StorageFile::StorageFile(const std::string& path)
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): open is what it is
    : _descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}

StorageFile::~StorageFile() {
    if (_descriptor >= 0) {
        close(_descriptor);
    }
}

std::string StorageFile::readAll() const {
    if (_descriptor < 0) {
        return {};
    }
    const std::size_t announced = _announcedSize();
    std::string text(announced > 0 ? announced : GROWTH_BYTES, '\0');
    std::size_t size = 0;
    for (;;) {
        const ssize_t count = read(_descriptor, text.data() + size, text.size() - size);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        size += static_cast<std::size_t>(count);
        if (size == announced) {
            break;
        }
        if (size == text.size()) {
            text.resize(size + GROWTH_BYTES);
        }
    }
    text.resize(size);
    return text;
}

std::size_t StorageFile::_announcedSize() const {
    struct stat status {};
    return fstat(_descriptor, &status) == 0 && S_ISREG(status.st_mode)
               ? static_cast<std::size_t>(status.st_size)
               : 0;
}

}  // namespace reticled
