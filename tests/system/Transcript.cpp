#include "tests/system/Transcript.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {

constexpr const char* BLOCK_START = "```transcript";
constexpr const char* BLOCK_END = "```";

/// Reads on to the end of a block. \param line the number of its first line, and then of its last
std::vector<sim::Step> readBlock(std::istream& document, std::size_t& line) {
    // Empty lines stand for those before it: so each step gets its line of the document.
    std::string block(line, '\n');
    for (std::string text; std::getline(document, text); block += text + '\n') {
        ++line;
        if (text == BLOCK_END) {
            std::istringstream input(block);
            return sim::StepReader(input).rest();
        }
    }
    throw std::runtime_error("the last transcript has no end");
}

}  // namespace

std::vector<Transcript> Transcript::readFrom(const std::string& path) {
    std::ifstream document(path);
    if (!document) {
        throw std::runtime_error("cannot read " + path);
    }
    const std::string name = std::filesystem::path(path).filename();
    std::vector<Transcript> transcripts;
    std::size_t line = 0;
    for (std::string text; std::getline(document, text);) {
        ++line;
        if (text == BLOCK_START) {
            const std::string place = name + ":" + std::to_string(line);
            transcripts.push_back({place, readBlock(document, line)});
        }
    }
    return transcripts;
}
