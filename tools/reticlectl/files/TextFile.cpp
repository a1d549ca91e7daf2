#include "tools/reticlectl/files/TextFile.h"

#include <cerrno>
#include <cstring>
#include <fstream>

#include "client/Request.h"
#include "tools/reticlectl/outcome/Failure.h"

namespace reticlectl {

namespace {

std::string read(std::istream& stream, const std::string& file) {
    // A text of this size is refused by the client library.
    std::string text(reticle::REQUEST_LIMIT_BYTES, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (stream.bad()) {
        throw Failure(ExitStatus::USAGE, "cannot read " + file + ": " + std::strerror(errno) +
                                             ": check that it is a file that you may read");
    }
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return text;
}

}  // namespace

std::string readText(const std::string& file, std::istream& standardInput) {
    errno = 0;
    if (file == STANDARD_STREAM) {
        return read(standardInput, "standard input");
    }
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        stream.setstate(std::ios::badbit);
    }
    return read(stream, file);
}

void writeText(const std::string& file, const std::string& text, std::ostream& standardOutput) {
    if (file == STANDARD_STREAM) {
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
