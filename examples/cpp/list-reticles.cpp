// Lists the reticles of a device; with an index, makes that reticle the active one first.
#include <reticle-client/ReticleClient.h>

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

bool read(const std::string& text, int& index) {
    std::istringstream stream(text);
    return stream >> index && stream.eof();
}

}  // namespace

int main(int argc, char** argv) {
    int index = 0;
    if (argc < 2 || argc > 3 || (argc == 3 && !read(argv[2], index))) {
        std::cerr << "usage: list-reticles HOST [INDEX]\n";
        return 2;
    }
    try {
        reticle::ReticleClient device(argv[1]);
        print(argc == 3 ? device.activate(index) : device.list());
        return 0;
    } catch (const reticle::Refused& refusal) {
        std::cerr << "The device said no: " << refusal.resultName() << '\n';
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
    }
    return 1;
}
