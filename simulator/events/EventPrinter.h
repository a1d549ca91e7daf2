#pragma once

#include <iosfwd>

#include "simulator/events/Event.h"

namespace sim {

/// Prints events for people, one a line.
class EventPrinter {
public:
    /// \param output outlives this object
    /// \param isVerbose whether all events are printed, or only the answers to requests that make
    ///        no sense: a mistake of the service or of a test, which nobody should have to look for
    EventPrinter(std::ostream& output, bool isVerbose) : _output(output), _isVerbose(isVerbose) {}

    void print(const Event& event);

private:
    std::ostream& _output;
    bool _isVerbose;
};

}  // namespace sim
