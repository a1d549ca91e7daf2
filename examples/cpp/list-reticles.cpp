// Lists the reticles of a device; with an index, makes that reticle the active one first.
#include <reticle-client/ReticleClient.h>

#include <chrono>
#include <exception>
#include <iostream>
#include <string>

namespace {

void print(const reticle::Reply& reply) {
    for (const reticle::Reticle& reticle : reply.reticles) {
        std::cout << (reticle.isActive ? "* " : "  ")
                  << (reticle.index ? std::to_string(*reticle.index) : "-") << ' ' << reticle.name
                  << '\n';
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3) {
        std::cerr << "usage: list-reticles HOST [INDEX]\n";
        return 2;
    }
    try {
        reticle::ReticleClient device(argv[1], reticle::ReticleClient::DEFAULT_PORT,
                                      std::chrono::seconds(10));
        print(argc == 3 ? device.activate(std::stoi(argv[2])) : device.list());
        return 0;
    } catch (const reticle::Refused& refusal) {
        std::cerr << "The device said no: " << refusal.resultName() << '\n';
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
    }
    return 1;
}
