#pragma once

#include <cstddef>
#include <functional>
#include <optional>

namespace reticlectl {

/// How much a terminal shows at once, in characters.
struct TerminalSize {
    std::size_t columns;
    std::size_t rows;
};

/// What the output streams lead to. By itself: to files or pipes.
struct Terminal {
    /// Standard output is a terminal.
    bool takesOutput = false;
    /// Standard error is a terminal.
    bool takesErrors = false;
    /// Standard output is a terminal that shows colours, and the user has not turned them off.
    bool showsColors = false;
    /// The size of the terminal at this moment: people resize their windows. Nothing when it is
    /// unknown, or there is no terminal.
    std::function<std::optional<TerminalSize>()> size = [] { return std::nullopt; };
};

/// What the process's own standard streams lead to. A NO_COLOR that is not empty and a TERM that is
/// "dumb" turn colours off; a number in COLUMNS goes before the width that the terminal tells.
[[nodiscard]] Terminal terminalOfProcess();

}  // namespace reticlectl
