#include <csignal>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <utility>

#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>

#include "simulator/CommandLine.h"
#include "simulator/device/Device.h"
#include "simulator/device/FaultyDevice.h"
#include "simulator/device/Storage.h"
#include "simulator/link/Server.h"
#include "simulator/log/ServiceLog.h"
#include "simulator/session/RecordingDevice.h"
#include "simulator/session/ReplayDevice.h"
#include "simulator/session/SessionReader.h"
#include "simulator/session/SessionWriter.h"

namespace {

/// The requests were not those of the session.
constexpr int EXIT_DIFFERENCE = 3;

/// Serves until a signal or a fatal difference ends it.
class Loop {
public:
    explicit Loop(const sim::Options& options) : _server(_io, options.port, std::cerr) {
        _signals.async_wait([this](const asio::error_code& /*error*/, int /*signal*/) { stop(); });
    }

    /// \param what told about the device on the line that says that it listens
    void run(sim::ExchangeFunction exchange, const std::string& what) {
        _server.start(std::move(exchange));
        std::cout << "rtos-sim: listening on 127.0.0.1:" << _server.port() << ", " << what
                  << std::endl;
        _io.run();
    }

    void stop() { _io.stop(); }

private:
    asio::io_context _io;
    asio::signal_set _signals{_io, SIGINT, SIGTERM};
    sim::Server _server;
};

std::ifstream openInput(const std::filesystem::path& path) {
    std::ifstream input(path, std::ios::binary);
    if (!input) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return input;
}

sim::Session readSession(const std::filesystem::path& path) {
    std::ifstream input = openInput(path);
    try {
        return sim::SessionReader(input).read();
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(path.string() + ", " + error.what());
    }
}

/// Runs `exchange` and writes its session into `path`.
void record(Loop& loop, const sim::ExchangeFunction& exchange, const sim::Options& options,
            const std::string& what) {
    std::ofstream session(options.recordFile, std::ios::binary | std::ios::trunc);
    sim::RecordingDevice recording(exchange, options.root, session);
    if (session) {
        loop.run([&recording](const std::string& request) { return recording.exchange(request); },
                 what);
    }
    if (!session) {
        throw std::runtime_error("cannot write " + options.recordFile.string());
    }
}

int simulate(const sim::Options& options) {
    // The port first: a second simulator must not touch the storage of the first.
    Loop loop(options);
    sim::Storage storage(options.root);
    if (options.isReset) {
        sim::Device::restoreFactory(storage);
    }
    sim::Device device(storage, options.limits);
    sim::FaultyDevice faulty(device, storage, options.faults, std::cerr, options.isVerbose);
    const sim::ExchangeFunction exchange = [&faulty](const std::string& request) {
        return faulty.exchange(request);
    };
    const std::string what = "root " + storage.rootText() + ", " +
                             std::to_string(device.reticles().size()) + " reticles";
    if (options.recordFile.empty()) {
        loop.run(exchange, what);
    } else {
        record(loop, exchange, options, what);
    }
    return EXIT_SUCCESS;
}

int replay(const sim::Options& options) {
    sim::Session session = readSession(options.replayFile);
    const std::string what = "root " + (options.root / "").string() + ", session of " +
                             std::to_string(session.exchanges.size()) + " exchanges";
    Loop loop(options);
    sim::ReplayDevice device(std::move(session), options.root);
    loop.run(
        [&loop, &device, &options](const std::string& request) {
            sim::Delivery answer = device.exchange(request);
            if (!device.difference().empty()) {
                loop.stop();
            } else if (options.isVerbose) {
                std::cerr << "rtos-sim: exchange " << device.played() << " played" << std::endl;
            }
            return answer;
        },
        what);
    if (device.difference().empty() && device.isComplete()) {
        std::cout << "rtos-sim: all " << device.played() << " exchanges played" << std::endl;
        return EXIT_SUCCESS;
    }
    std::cerr << "rtos-sim: "
              << (device.difference().empty() ? device.expectation() : device.difference())
              << std::endl;
    return EXIT_DIFFERENCE;
}

int convertLog(const sim::Options& options) {
    std::ifstream input = openInput(options.fromLogFile);
    const sim::ServiceLog log(input);
    for (const std::string& remark : log.remarks()) {
        std::cerr << "rtos-sim: " << options.fromLogFile.string() << ", " << remark << std::endl;
    }
    if (log.session().clientRequests.empty()) {
        throw std::runtime_error(options.fromLogFile.string() +
                                 " holds no whole request of a client");
    }
    sim::SessionWriter(std::cout).write(log.session());
    if (!std::cout.flush()) {
        throw std::runtime_error("cannot write the session");
    }
    return EXIT_SUCCESS;
}

int run(const sim::Options& options) {
    if (!options.fromLogFile.empty()) {
        return convertLog(options);
    }
    return options.replayFile.empty() ? simulate(options) : replay(options);
}

}  // namespace

int main(int argc, char* argv[]) {
    int exitStatus = EXIT_SUCCESS;
    try {
        if (const auto options = sim::parseCommandLine(argc, argv, exitStatus)) {
            return run(*options);
        }
    } catch (const std::exception& error) {
        std::cerr << "rtos-sim: " << error.what() << std::endl;
        return EXIT_FAILURE;
    }
    return exitStatus;
}
