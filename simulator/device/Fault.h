#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace sim {

/// In the order of their effect: of two that contradict each other the later one wins.
enum class FaultKind {
    REFUSE,
    NO_PARAM,
    BAD_LIST,
    EMPTY_LIST,
    MISSING_FILE,
    LONG,
    GARBAGE,
    SPLIT,
    DELAY,
    SILENT,
    CLOSE,
    RESET,
};

/// One thing that goes wrong on purpose.
struct Fault {
    FaultKind kind = FaultKind::SILENT;
    int argument = 0;                     ///< milliseconds or "ret_val", by `kind`; else 0
    std::optional<std::size_t> exchange;  ///< counted from 1 over the run; none means every one

    [[nodiscard]] bool hits(std::size_t number) const { return !exchange || *exchange == number; }

    bool operator==(const Fault&) const = default;
};

/// Reads KIND[:ARG][@N].
/// \throws std::invalid_argument that says what is wrong with `text`.
[[nodiscard]] Fault parseFault(const std::string& text);

/// `faults` as `parseFault` reads them.
[[nodiscard]] std::vector<std::string> faultTexts(const std::vector<Fault>& faults);

/// What `--help` says of the faults: one paragraph for each kind.
[[nodiscard]] std::string faultHelp();

}  // namespace sim
