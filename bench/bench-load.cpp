// bench-load: the clients of one scenario, told by lines on its standard input what to do.
//   bench-load REQUEST-FILE REPLY-FILE CONNECTIONS
// Prints "connected", then one line for each line that it is given:
//   run CONNECTIONS REQUESTS   prints NANOSECONDS WRONG LOST
//   burst COUNT                prints the NANOSECONDS after which each reply had arrived
//   silent COUNT               opens more connections; prints "connected"
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>

#include "bench/LoadGenerator.h"
#include "bench/common/readFile.h"

namespace reticled::bench {
namespace {

std::string obey(LoadGenerator& load, const std::string& line) {
    std::istringstream words(line);
    std::string command;
    int number = 0;
    words >> command >> number;
    std::ostringstream answer;
    if (command == "run") {
        int requests = 0;
        words >> requests;
        const auto [elapsed, wrong, lost] = load.run(number, requests);
        answer << elapsed.count() << ' ' << wrong << ' ' << lost;
    } else if (command == "burst") {
        for (const std::chrono::nanoseconds arrival : load.burst(number)) {
            answer << arrival.count() << ' ';
        }
    } else if (command == "silent") {
        LoadGenerator::addSilentClients(number);
        answer << "connected";
    }
    return answer.str();
}

}  // namespace
}  // namespace reticled::bench

int main(int count, char** arguments) {
    using namespace reticled::bench;
    constexpr int expectedArguments = 4;
    if (count != expectedArguments) {
        return EXIT_FAILURE;
    }
    LoadGenerator load(readFile(arguments[1]), readFile(arguments[2]), std::stoi(arguments[3]));
    std::cout << "connected" << std::endl;  // NOLINT(performance-avoid-endl): the other side waits
    for (std::string line; std::getline(std::cin, line);) {
        std::cout << obey(load, line) << std::endl;  // NOLINT(performance-avoid-endl): as above
    }
}
