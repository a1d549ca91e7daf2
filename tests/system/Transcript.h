#pragma once

#include <string>
#include <vector>

#include "simulator/session/StepReader.h"

/// A story told in a protocol document, in a fenced block marked "transcript".
struct Transcript {
    /// Where the block stands, "client-protocol.md:17".
    std::string place;
    /// Such as "client sends 29 bytes" and the text; their lines are those of the document.
    std::vector<sim::Step> steps;

    /// All transcripts of a document, in order.
    /// \throws std::runtime_error when the document cannot be read, a block has no end, or a text is
    ///         not as long as its step says.
    [[nodiscard]] static std::vector<Transcript> readFrom(const std::string& path);
};
