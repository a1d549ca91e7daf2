#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/system/Process.h"

/// `reticlectl trace` on its default port, towards the service on its own. Ends with this object.
class TracingProcess {
public:
    static constexpr std::uint16_t PORT = 3452;

    /// Starts it with `options` and waits until it listens.
    /// \throws std::runtime_error when it does not.
    explicit TracingProcess(const std::vector<std::string>& options = {});

    /// All that it has printed. \param normalised times, the clients' ports and lengths of time as
    /// 00:00:00.000, 50000 and 0.000 ms.
    [[nodiscard]] std::string output() const { return _process.standardOutput(); }
    [[nodiscard]] std::string normalisedOutput() const { return normalised(output()); }

    [[nodiscard]] static std::string normalised(const std::string& text);

    /// \return whether it has printed this by the time a test waits at most.
    [[nodiscard]] bool eventuallyPrints(const std::string& text) const;

    /// Ends it as Ctrl-C does. \return its exit status.
    [[nodiscard]] int stop();

    [[nodiscard]] Process& process() { return _process; }

private:
    Process _process;
};
