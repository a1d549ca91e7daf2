#include <csignal>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <utility>

#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>

#include "simulator/CommandLine.h"
#include "simulator/control/ControlServer.h"
#include "simulator/control/DeviceCommands.h"
#include "simulator/control/replayCommand.h"
#include "simulator/control/sendCommand.h"
#include "simulator/device/Device.h"
#include "simulator/device/FaultyDevice.h"
#include "simulator/device/Storage.h"
#include "simulator/events/EventPrinter.h"
#include "simulator/events/EventStream.h"
#include "simulator/events/ObservedDevice.h"
#include "simulator/events/ObservedState.h"
#include "simulator/link/Server.h"
#include "simulator/log/ServiceLog.h"
#include "simulator/session/ReplayDevice.h"
#include "simulator/session/SessionReader.h"
#include "simulator/session/SessionRecorder.h"
#include "simulator/session/SessionWriter.h"
#include "simulator/web/DevicePage.h"

namespace {

/// The requests were not those of the session.
constexpr int EXIT_DIFFERENCE = 3;

/// Serves until a signal or a fatal difference ends it.
class Loop {
public:
    /// Listens where the options say.
    explicit Loop(const sim::Options& options) : _server(_io, options.port, std::cerr) {
        _signals.async_wait([this](const asio::error_code& /*error*/, int /*signal*/) { stop(); });
        if (!options.controlPath.empty()) {
            _control.emplace(_io, options.controlPath);
        }
    }

    /// \param command what is carried out for whoever controls the simulator
    /// \param what told about the device on the line that says that it listens
    void run(sim::ObservedDevice& device, sim::CommandFunction command, sim::EventStream& events,
             const std::string& what) {
        if (_control) {
            _control->start(std::move(command), events);
        }
        _server.start([&device](const std::string& request) { return device.exchange(request); });
        std::cout << "rtos-sim: listening on 127.0.0.1:" << _server.port() << ", " << what
                  << std::endl;
        _io.run();
    }

    void stop() { _io.stop(); }

    [[nodiscard]] sim::Server& server() { return _server; }
    [[nodiscard]] asio::io_context& io() { return _io; }

private:
    asio::io_context _io;
    asio::signal_set _signals{_io, SIGINT, SIGTERM};
    sim::Server _server;
    std::optional<sim::ControlServer> _control;
};

/// The session that is written while simulating.
class RecordedFile {
public:
    /// \throws std::runtime_error when it cannot be written.
    RecordedFile(const sim::Options& options, sim::EventStream& events)
        : _path(options.recordFile),
          _file(_path, std::ios::binary | std::ios::trunc),
          _recorder(options.root, _file) {
        requireWritten();
        events.subscribe([this](const sim::Event& event) { _recorder.record(event); });
    }

    void requireWritten() const {
        if (!_file) {
            throw std::runtime_error("cannot write " + _path.string());
        }
    }

private:
    std::filesystem::path _path;
    std::ofstream _file;
    sim::SessionRecorder _recorder;
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

/// Has `events` printed as the options say.
void print(sim::EventStream& events, const sim::Options& options) {
    events.subscribe([printer = sim::EventPrinter(std::cerr, options.isVerbose)](
                         const sim::Event& event) mutable { printer.print(event); });
}

/// Has `events` published for each file that `storage` changes.
void publishFiles(auto& storage, sim::EventStream& events) {
    storage.observe([&events](const sim::FileChange& change) { events.publish(change); });
}

int simulate(const sim::Options& options) {
    // The port first: a second simulator must not touch the storage of the first.
    Loop loop(options);
    sim::Storage storage(options.root);
    if (options.isReset) {
        sim::Device::restoreFactory(storage);
    }
    sim::Device device(storage, options.limits);
    sim::FaultyDevice faulty(device, storage, options.faults);

    sim::EventStream events;
    print(events, options);
    std::optional<RecordedFile> session;
    if (!options.recordFile.empty()) {
        session.emplace(options, events);
    }
    publishFiles(storage, events);
    sim::ObservedState state(device, faulty, events);
    sim::ObservedDevice observed(
        [&faulty, &state](const std::string& request) {
            sim::Delivery delivery = faulty.exchange(request);
            state.tell(false);
            return delivery;
        },
        events);
    sim::DeviceCommands commands({storage, device, faulty, loop.server(), events, state});
    std::optional<sim::DevicePage> page;
    if (options.webAddress) {
        page.emplace(*options.webAddress,
                     sim::DevicePage::Parts{loop.io(), commands, device, events}, options.root);
        std::cout << "rtos-sim: page " << page->url() << std::endl;
    }
    loop.run(
        observed, [&commands](const sim::Words& words) { return commands.run(words); }, events,
        "root " + storage.rootText() + ", " + std::to_string(device.reticles().size()) +
            " reticles");
    if (session) {
        session->requireWritten();
    }
    return EXIT_SUCCESS;
}

int replay(const sim::Options& options) {
    sim::Session session = readSession(options.replayFile);
    const std::string what = "root " + (options.root / "").string() + ", session of " +
                             std::to_string(session.exchanges.size()) + " exchanges";
    Loop loop(options);
    sim::ReplayDevice device(std::move(session), options.root);
    sim::EventStream events;
    print(events, options);
    publishFiles(device, events);
    sim::ObservedDevice observed(
        [&loop, &device](const std::string& request) {
            sim::Delivery answer = device.exchange(request);
            if (!device.difference().empty()) {
                loop.stop();
            }
            return answer;
        },
        events);
    loop.run(
        observed,
        [&device, &options](const sim::Words& words) {
            return sim::replayCommand(words, device, options.root);
        },
        events, what);
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
    if (!options.command.empty()) {
        sim::sendCommand(options.commandPath, options.command, std::cout);
        return EXIT_SUCCESS;
    }
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
