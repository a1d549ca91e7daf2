#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

#include "simulator/control/CommandForm.h"
#include "simulator/device/Device.h"
#include "simulator/device/Fault.h"
#include "simulator/web/WebAddress.h"

namespace sim {

/// What a person asks of one run.
struct Options {
    std::filesystem::path root = "/tmp/FL0";
    std::uint16_t port = 3425;  ///< 0 for any free one
    Limits limits;
    bool isReset = false;
    bool isVerbose = false;
    std::vector<Fault> faults;
    std::filesystem::path controlPath;     ///< socket on which to take commands; empty for none
    std::filesystem::path commandPath;     ///< socket to send `command` to, which is all to be done
    Words command;                         ///< empty for none
    std::optional<WebAddress> webAddress;  ///< where to serve the page; none for no page
    std::filesystem::path recordFile;      ///< session to write while simulating; empty for none
    std::filesystem::path replayFile;   ///< session to play instead of simulating; empty for none
    std::filesystem::path fromLogFile;  ///< log to turn into a session; empty for none
};

/// Reads the command line. For --help, --version and mistakes it prints what there is to say (help
/// and version on standard output, mistakes on standard error) and sets `exitStatus`.
/// \return the options; none when the program is to end with `exitStatus`
[[nodiscard]] std::optional<Options> parseCommandLine(int argc, const char* const* argv,
                                                      int& exitStatus);

}  // namespace sim
