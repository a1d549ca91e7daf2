#include "bench/common/readFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "bench/common/Sockets.h"

namespace reticled::bench {

std::string readFile(const std::string& path) {
    std::string room;
    return std::string(readFile(path, room));
}

std::string_view readFile(const std::string& path, std::string& room) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): open is what it is
    const int file = check(open(path.c_str(), O_RDONLY | O_CLOEXEC), path);
    struct stat status {};
    check(fstat(file, &status), path);
    const auto size = static_cast<std::size_t>(status.st_size);
    if (room.size() < size) {
        room.resize(size);
    }
    const int count = check(static_cast<int>(read(file, room.data(), size)), path);
    close(file);
    return {room.data(), static_cast<std::size_t>(count)};
}

}  // namespace reticled::bench
