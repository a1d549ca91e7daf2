#pragma once

#include <compare>
#include <string>
#include <string_view>

/// Where something can fail: the n-th call of one kind, or the n-th allocation, of one thread.
struct Site {
    std::string program;  ///< "reticled" or "reticled-foreground"
    int thread = 0;       ///< see SharedPage
    std::string call;     ///< a system call's name, or ALLOCATION
    long occurrence = 1;

    auto operator<=>(const Site&) const = default;
};

inline constexpr auto ALLOCATION = "allocation";

/// One failure of one run of the service.
struct Fault {
    Site site;
    int error = 0;         ///< an errno value; ENOMEM for an allocation, 0 for a short count
    std::string target{};  ///< what the call is about, as the sweep saw it: a path, "socket"

    /// "reticled-foreground main socket 1 EMFILE"; what --only takes.
    [[nodiscard]] std::string text() const;
};

[[nodiscard]] std::string threadName(int thread);
