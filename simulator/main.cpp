#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <optional>

#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>

#include "simulator/CommandLine.h"
#include "simulator/Device.h"
#include "simulator/FaultyDevice.h"
#include "simulator/Server.h"
#include "simulator/Storage.h"

namespace {

void run(const sim::Options& options) {
    asio::io_context io;
    asio::signal_set signals(io, SIGINT, SIGTERM);
    signals.async_wait([&io](const asio::error_code& /*error*/, int /*signal*/) { io.stop(); });

    // The port first: a second simulator must not touch the storage of the first.
    sim::Server server(io, options.port, std::cerr);
    sim::Storage storage(options.root);
    if (options.isReset) {
        sim::Device::restoreFactory(storage);
    }
    sim::Device device(storage, options.maxReticles);
    sim::FaultyDevice faulty(device, storage, options.faults, std::cerr, options.isVerbose);
    server.start([&faulty](const std::string& request) { return faulty.exchange(request); });

    std::cout << "rtos-sim: listening on 127.0.0.1:" << server.port() << ", root "
              << storage.rootText() << ", " << device.reticles().size() << " reticles" << std::endl;
    io.run();
}

}  // namespace

int main(int argc, char* argv[]) {
    int exitStatus = EXIT_SUCCESS;
    try {
        if (const auto options = sim::parseCommandLine(argc, argv, exitStatus)) {
            run(*options);
        }
    } catch (const std::exception& error) {
        std::cerr << "rtos-sim: " << error.what() << std::endl;
        return EXIT_FAILURE;
    }
    return exitStatus;
}
