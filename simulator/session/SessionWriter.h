#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "simulator/session/Session.h"

namespace sim {

/// Writes `instruction` and the text below it as StepReader reads them; with the text's size, and
/// escaped where people could not read it.
void writeStep(std::ostream& output, const std::string& instruction, std::string_view text);

/// Writes a session file.
class SessionWriter {
public:
    /// Writes the head.
    /// \param output outlives the writer; whether writing succeeds is its state
    explicit SessionWriter(std::ostream& output);

    void writeClientRequest(const std::string& text);

    /// Writes one exchange and flushes: a session is whole up to the last one, whatever ends us.
    void writeExchange(const Exchange& exchange);

    /// Writes all of `session`.
    void write(const Session& session);

private:
    std::ostream& _output;
};

}  // namespace sim
