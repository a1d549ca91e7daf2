#include "reticles/readStorageFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>

namespace reticled {
namespace {

/// For files that do not know their size, as those of the kernel: room to start with.
constexpr std::size_t UNKNOWN_SIZE_BYTES = 65536;

/// Where memory was short, a failure says nothing about the file.
void throwForLackOfMemory() {
    if (errno == ENOMEM) {
        throw std::bad_alloc();
    }
}

class OpenFile {
public:
    explicit OpenFile(const std::string& path)
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): open is what it is
        : _descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        if (_descriptor < 0) {
            throwForLackOfMemory();
        }
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        if (isOpen()) {
            close(_descriptor);
        }
    }

    [[nodiscard]] bool isOpen() const { return _descriptor >= 0; }

    /// 0 where it is not known.
    [[nodiscard]] std::size_t size() const {
        struct stat status {};
        return fstat(_descriptor, &status) == 0 && S_ISREG(status.st_mode)
                   ? static_cast<std::size_t>(status.st_size)
                   : 0;
    }

    /// \return how many bytes were read, 0 or less at the end and on errors.
    ssize_t read(char* place, std::size_t most) const {
        ssize_t count = 0;
        do {
            count = ::read(_descriptor, place, most);
        } while (count < 0 && errno == EINTR);
        if (count < 0) {
            throwForLackOfMemory();
        }
        return count;
    }

private:
    int _descriptor;
};

void allocate(FileContent& content, std::size_t capacity) {
    // NOLINTNEXTLINE(*-avoid-c-arrays)
    auto bytes = std::make_unique_for_overwrite<char[]>(capacity);
    std::copy_n(content.bytes.get(), content.size, bytes.get());
    content.bytes = std::move(bytes);
}

}  // namespace

FileContent readStorageFile(const std::string& path) {
    const OpenFile file(path);
    if (!file.isOpen()) {
        return {};
    }
    const std::size_t announced = file.size();
    std::size_t capacity = announced > 0 ? announced : UNKNOWN_SIZE_BYTES;
    FileContent content;
    allocate(content, capacity);
    for (;;) {
        const ssize_t count =
            file.read(content.bytes.get() + content.size, capacity - content.size);
        if (count <= 0) {
            return content;
        }
        content.size += static_cast<std::size_t>(count);
        if (content.size == announced) {
            return content;
        }
        if (content.size == capacity) {
            capacity *= 2;
            allocate(content, capacity);
        }
    }
}

}  // namespace reticled
