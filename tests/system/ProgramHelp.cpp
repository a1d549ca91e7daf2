#include "tests/system/ProgramHelp.h"

#include <regex>
#include <sstream>
#include <stdexcept>

#include "tests/system/Process.h"

namespace {

std::set<std::string> allMatches(const std::string& text, const std::regex& pattern) {
    std::set<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end;
         ++match) {
        found.insert((*match)[1]);
    }
    return found;
}

/// The lines between a heading and the next empty line.
std::string section(const std::string& text, const std::string& heading) {
    const std::size_t begin = text.find(heading + ":\n");
    return begin == std::string::npos ? "" : text.substr(begin, text.find("\n\n", begin) - begin);
}

}  // namespace

ProgramHelp ProgramHelp::of(std::vector<std::string> command) {
    command.emplace_back("--help");
    Process process(command);
    if (process.waitForEnd() != 0) {
        throw std::runtime_error("no help from " + command.front());
    }
    const std::string text = process.standardOutput();
    const std::regex entry("\n  ([a-z]+) ");
    return {optionsIn(section(text, "Options")), allMatches(section(text, "Subcommands"), entry)};
}

std::set<std::string> ProgramHelp::entriesIn(const std::string& text) {
    return allMatches(text, std::regex("\n  ([a-z][a-z-]*)(?=[:\n]| [A-Za-z[])"));
}

std::set<std::string> ProgramHelp::optionsIn(const std::string& text) {
    return allMatches(text, std::regex("(?:^|[^a-z-])(--[a-z][a-z-]*)"));
}
