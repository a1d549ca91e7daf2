// Lists the reticles of a device; with an index, makes that reticle the active one first.
#include <reticle-client/ReticleClient.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>

namespace {

void print(const reticle::Reply& reply) {
    for (const reticle::Reticle& reticle : reply.reticles) {
        const std::string index = reticle.index ? std::to_string(*reticle.index) : "-";
        std::cout << (reticle.isActive ? "* " : "  ") << index << ' ' << reticle.name << '\n';
    }
}

template <typename Number>
bool read(const std::string& text, Number& number) {
    std::istringstream stream(text);
    return stream >> number && stream.eof();
}

std::string variable(const char* name, const char* otherwise) {
    const char* const value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : otherwise;
}

}  // namespace

int main(int argc, char** argv) {
    int index = 0;
    int port = 0;
    const std::string host = argc > 1 ? argv[1] : variable("RETICLED_HOST", "127.0.0.1");
    if (argc > 3 || (argc == 3 && !read(argv[2], index)) ||
        !read(variable("RETICLED_PORT", "3451"), port) || port < 1 || port > 65535) {
        std::cerr << "usage: list-reticles [HOST [INDEX]]    (RETICLED_HOST, RETICLED_PORT)\n";
        return 2;
    }
    try {
        reticle::ReticleClient device(host, static_cast<std::uint16_t>(port));
        print(argc == 3 ? device.activate(index) : device.list());
        return 0;
    } catch (const reticle::Refused& refusal) {
        std::cerr << "The device said no: " << refusal.resultName() << '\n';
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
    }
    return 1;
}
