#pragma once

#include <string>

/// The daemon's standard error leads to /dev/null, and with it what a sanitizer finds in it. This
/// sends the findings of every program that a test starts to files and gives them back.
class SanitizerReports {
public:
    /// Sets the sanitizers' options in the environment of what is started from now on.
    SanitizerReports();

    /// All reports written so far; empty when the programs are clean, or not sanitized.
    [[nodiscard]] std::string text() const;
};
