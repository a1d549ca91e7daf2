#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "tests/sweep/Fault.h"
#include "tests/sweep/Trial.h"

/// Tries faults out on many stages at a time, each in private namespaces of its own.
class Crew {
public:
    explicit Crew(int stages) : _stages(stages) {}

    /// See Stage::findFaults.
    [[nodiscard]] static std::vector<Fault> findFaults();

    /// Tries out `faults` in their order, as many as are begun within `duration`, and gives each
    /// verdict as it comes.
    void tryOut(const std::vector<Fault>& faults, std::chrono::seconds duration,
                const std::function<void(const Fault&, const Verdict&)>& take) const;

private:
    int _stages;
};
