#pragma once

#include <string>
#include <vector>

#include "tests/support/FlashFiles.h"
#include "tests/sweep/Device.h"
#include "tests/sweep/Fault.h"
#include "tests/sweep/Story.h"

/// How a run of the service with one fault ended.
enum class End {
    SERVED,        ///< every request had its reply
    REQUEST_LOST,  ///< a request had none, and the log a line; the next were served
    LINK_LOST,     ///< the link to the RTOS, for good, with a line; a new service serves
    NOT_STARTED,   ///< the service said so and ended
    EXPLAINED,     ///< another way that the system means; see Explanations
    NOT_MET,       ///< the call or allocation that was to fail was not made in this run
    UNEXPLAINED,
};

inline constexpr int ENDS = 7;

[[nodiscard]] const char* nameOf(End end);

struct Verdict {
    End end = End::UNEXPLAINED;
    std::string
        detail{};  ///< reasons of what is explained; for what is not, what happened and the log
};

/// Where trials take place, one after the other; everything of one that could reach the next is
/// taken away.
class Stage {
public:
    Stage() { story::prepare(_flash); }

    [[nodiscard]] Verdict tryOut(const Fault& fault);

    /// Every fault that a story of the programs can meet.
    /// \throws std::runtime_error when a story without a fault does not go well, or has a call that
    ///         is not known.
    [[nodiscard]] std::vector<Fault> findFaults();

private:
    void _collect(const std::string& program, std::vector<Fault>& faults);
    void _clearDataFiles() const;

    FlashFiles _flash;
    Device _device{_flash};
};
