#include "tests/system/Transcript.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace {

constexpr std::string_view BLOCK_START = "```transcript";
constexpr std::string_view BLOCK_END = "```";
constexpr std::string_view INDENTATION = "    ";
constexpr std::string_view COMMENT = "#";

void appendText(TranscriptStep& step, std::string_view line) {
    if (step.hasText) {
        step.text += '\n';
    }
    step.text += line.substr(INDENTATION.size());
    step.hasText = true;
}

void appendLine(Transcript& transcript, const std::string& place, const std::string& line) {
    if (line.starts_with(INDENTATION) && !transcript.steps.empty()) {
        appendText(transcript.steps.back(), line);
    } else if (!line.starts_with(COMMENT)) {
        transcript.steps.push_back({place, line, {}, false});
    }
}

}  // namespace

std::vector<Transcript> Transcript::readFrom(const std::string& path) {
    std::ifstream document(path);
    if (!document) {
        throw std::runtime_error("cannot read " + path);
    }
    const std::string name = std::filesystem::path(path).filename();
    std::vector<Transcript> transcripts;
    bool isInside = false;
    std::size_t number = 0;
    for (std::string line; std::getline(document, line);) {
        const std::string place = name + ":" + std::to_string(++number);
        if (!isInside && line == BLOCK_START) {
            isInside = true;
            transcripts.push_back({place, {}});
        } else if (isInside && line == BLOCK_END) {
            isInside = false;
        } else if (isInside) {
            appendLine(transcripts.back(), place, line);
        }
    }
    if (isInside) {
        throw std::runtime_error(transcripts.back().place + ": the transcript has no end");
    }
    return transcripts;
}
