#pragma once

#include <string>

namespace reticlectl {

/// How it stands with one thing that the doctor has looked at.
enum class Verdict {
    OK,
    /// Works, or may work; somebody should look.
    LOOK,
    /// Clients are not served as they should be.
    BAD
};

struct Finding {
    /// What was looked at, in a word or two.
    std::string subject;
    Verdict verdict;
    /// What was seen, in a line or more. Any text, as names of processes and log lines stand in it.
    std::string text;
    /// What to do; empty where nothing need be done.
    std::string advice = {};
};

}  // namespace reticlectl
