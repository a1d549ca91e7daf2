#include "tools/reticlectl/terminal/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <string_view>

namespace reticlectl {

namespace {

/// Empty when the variable is not set.
std::string_view environment(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr ? value : "";
}

std::optional<std::size_t> positiveNumber(std::string_view text) {
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = error == std::errc() && end == text.data() + text.size();
    return isWhole && number > 0 ? std::optional(number) : std::nullopt;
}

std::optional<TerminalSize> currentSize() {
    winsize window{};
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): ioctl is what it is
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) != 0) {
        window = {};
    }
    const std::size_t columns =
        positiveNumber(environment("COLUMNS")).value_or(static_cast<std::size_t>(window.ws_col));
    if (columns == 0) {
        return std::nullopt;
    }
    // A terminal that tells no height is not cut.
    constexpr auto ANY_HEIGHT = static_cast<std::size_t>(-1);
    return TerminalSize{columns, window.ws_row > 0 ? window.ws_row : ANY_HEIGHT};
}

}  // namespace

Terminal terminalOfProcess() {
    Terminal terminal;
    terminal.takesOutput = ::isatty(STDOUT_FILENO) == 1;
    terminal.takesErrors = ::isatty(STDERR_FILENO) == 1;
    terminal.showsColors =
        terminal.takesOutput && environment("NO_COLOR").empty() && environment("TERM") != "dumb";
    if (terminal.takesOutput) {
        terminal.size = &currentSize;
    }
    return terminal;
}

}  // namespace reticlectl
