#pragma once

#include <filesystem>
#include <string>

#include <asio/io_context.hpp>

#include "simulator/control/DeviceCommands.h"
#include "simulator/device/Device.h"
#include "simulator/events/EventStream.h"
#include "simulator/web/WebServer.h"

namespace sim {

/// The page of a simulated device that runs. Its device stays on the thread that runs the
/// io_context: what browsers ask is done there.
class DevicePage {
public:
    /// The parts of a running simulator.
    struct Parts {
        asio::io_context& io;
        DeviceCommands& commands;
        const Device& device;
        EventStream& events;  ///< publishes nothing any more when the page has ended
    };

    /// Serves at once; answers that need the device wait until the io_context runs.
    /// \param parts all of them outlive this object
    /// \param root directory of the shared storage
    /// \throws std::runtime_error, naming the address, when that is not possible.
    DevicePage(const WebAddress& address, const Parts& parts, const std::filesystem::path& root);

    [[nodiscard]] std::string url() const { return _server.url(); }

private:
    WebServer _server;
};

}  // namespace sim
