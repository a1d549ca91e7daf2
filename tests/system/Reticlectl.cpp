#include "tests/system/Reticlectl.h"

#include <regex>

#include "tests/system/Process.h"
#include "tests/system/Programs.h"

Reticlectl Reticlectl::run(const std::vector<std::string>& arguments, const std::string& input) {
    std::vector<std::string> command{programs::RETICLECTL};
    command.insert(command.end(), arguments.begin(), arguments.end());
    Process process(command, input);
    const int status = process.waitForEnd().value();
    return {status, process.standardOutput(), process.standardError()};
}

std::string Reticlectl::table() const {
    return std::regex_replace(output, std::regex(" +(BYTES|[0-9]+)\n"), "\n");
}
