#pragma once

#include <string>
#include <string_view>
#include <vector>

/// One line of a transcript and the indented text below it.
struct TranscriptStep {
    /// Where the step stands, "client-protocol.md:17".
    std::string place;
    /// Such as "client sends 29 bytes".
    std::string instruction;
    /// The indented lines without their indentation, joined by newlines.
    std::string text;
    /// Whether there are indented lines at all: a file may be shown without its content.
    bool hasText = false;
};

/// A story told in a protocol document, in a fenced block marked "transcript".
struct Transcript {
    /// Where the block stands, "client-protocol.md:17".
    std::string place;
    std::vector<TranscriptStep> steps;

    /// All transcripts of a document, in order; comment lines are left out.
    /// \throws std::runtime_error when the document cannot be read or a block has no end.
    [[nodiscard]] static std::vector<Transcript> readFrom(const std::string& path);
};
