// sweep: every call of the service into the system, and every allocation, fails once.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iomanip>
#include <iostream>
#include <map>
#include <random>
#include <string>

#include <CLI/CLI.hpp>

#include "tests/sweep/Crew.h"

namespace {

/// For each kind of call, how many faults ended how.
class Tally {
public:
    void add(const Fault& fault, const Verdict& verdict) {
        ++_byCall[fault.site.call].at(static_cast<std::size_t>(verdict.end));
        ++_total.at(static_cast<std::size_t>(verdict.end));
        ++_count;
        if (verdict.end == End::UNEXPLAINED) {
            std::cout << "UNEXPLAINED " << fault.text() << ": " << verdict.detail << std::endl;
        } else if (verdict.end == End::EXPLAINED) {
            ++_reasons[verdict.detail];
        } else if (verdict.end == End::NOT_MET) {
            std::cout << "not met: " << fault.text() << std::endl;
        }
    }

    void print() const {
        std::cout << std::left << std::setw(NAME_WIDTH) << "call";
        for (int end = 0; end < ENDS; ++end) {
            std::cout << std::right << std::setw(NUMBER_WIDTH) << nameOf(static_cast<End>(end));
        }
        std::cout << '\n';
        for (const auto& [call, numbers] : _byCall) {
            _printRow(call, numbers);
        }
        _printRow("all", _total);
        for (const auto& [reason, count] : _reasons) {
            std::cout << count << " times: " << reason << '\n';
        }
    }

    [[nodiscard]] std::size_t count() const { return _count; }
    [[nodiscard]] std::size_t count(End end) const {
        return _total.at(static_cast<std::size_t>(end));
    }

private:
    using Numbers = std::array<std::size_t, ENDS>;

    static constexpr int NAME_WIDTH = 12;
    static constexpr int NUMBER_WIDTH = 13;

    static void _printRow(const std::string& name, const Numbers& numbers) {
        std::cout << std::left << std::setw(NAME_WIDTH) << name << std::right;
        for (const std::size_t number : numbers) {
            std::cout << std::setw(NUMBER_WIDTH) << number;
        }
        std::cout << '\n';
    }

    std::map<std::string, Numbers> _byCall;
    std::map<std::string, std::size_t> _reasons;
    Numbers _total{};
    std::size_t _count = 0;
};

}  // namespace

int main(int argc, char** argv) {
    CLI::App app(
        "Lets each call and each allocation of the service fail once and judges what follows.");
    std::string only;
    std::string seed;
    int seconds = 24 * 60 * 60;
    int stages = 24;
    bool isVerbose = false;
    app.add_option("--only", only,
                   "Only faults with this in their name, \"worker sendto 2 EPIPE\"");
    app.add_option("--seconds", seconds, "Begin no fault after that")->check(CLI::PositiveNumber);
    app.add_option("--seed", seed, "Any text: the faults in an order of its own");
    app.add_option("--stages", stages, "Faults at a time")->check(CLI::PositiveNumber);
    app.add_flag("--verbose", isVerbose, "Print how each fault ended");
    CLI11_PARSE(app, argc, argv);
    try {
        std::vector<Fault> faults = Crew::findFaults();
        std::cout << faults.size() << " faults\n";
        std::erase_if(faults, [&](const Fault& fault) {
            return fault.text().find(only) == std::string::npos;
        });
        if (!seed.empty()) {
            std::shuffle(faults.begin(), faults.end(),
                         std::mt19937_64(std::hash<std::string>()(seed)));
        }
        Tally tally;
        Crew(stages).tryOut(
            faults, std::chrono::seconds(seconds), [&](const Fault& fault, const Verdict& verdict) {
                tally.add(fault, verdict);
                if (isVerbose) {
                    std::cout << fault.text() << ": " << nameOf(verdict.end) << '\n';
                }
            });
        tally.print();
        std::cout << "sweep: " << tally.count() << " of " << faults.size() << " faults, "
                  << tally.count(End::UNEXPLAINED) << " unexplained" << std::endl;
        return tally.count(End::UNEXPLAINED) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const std::exception& failure) {
        std::cerr << "sweep: " << failure.what() << std::endl;
        return EXIT_FAILURE;
    }
}
