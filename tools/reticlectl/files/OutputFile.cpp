#include "tools/reticlectl/files/OutputFile.h"

#include <cerrno>
#include <cstring>
#include <fstream>

#include "tools/reticlectl/outcome/Failure.h"

namespace reticlectl {

void writeText(const std::string& file, const std::string& text, std::ostream& standardOutput) {
    if (file == STANDARD_OUTPUT) {
        standardOutput << text;
        return;
    }
    errno = 0;
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream << text << std::flush;
    if (!stream) {
        throw Failure(ExitStatus::USAGE, "cannot write " + file + ": " + std::strerror(errno) +
                                             ": check the path and the room there");
    }
}

}  // namespace reticlectl
