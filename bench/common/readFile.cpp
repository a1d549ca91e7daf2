#include "bench/common/readFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "bench/common/Sockets.h"

namespace reticled::bench {

std::string readFile(const std::string& path) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): open is what it is
    const int file = check(open(path.c_str(), O_RDONLY | O_CLOEXEC), path);
    struct stat status {};
    check(fstat(file, &status), path);
    std::string content(static_cast<std::size_t>(status.st_size), '\0');
    content.resize(static_cast<std::size_t>(
        check(static_cast<int>(read(file, content.data(), content.size())), path)));
    close(file);
    return content;
}

}  // namespace reticled::bench
