// soak: the service among clients and a device that misbehave at random; a balance at the end.
#include <array>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <random>
#include <string>

#include <CLI/CLI.hpp>

#include "tests/soak/Balance.h"
#include "tests/soak/Round.h"
#include "tests/support/Sandbox.h"
#include "tests/system/Programs.h"
#include "tests/system/SanitizerReports.h"

namespace {

using Clock = std::chrono::steady_clock;

struct RoundPlan {
    Round::Kind kind;
    const char* name;
    std::chrono::seconds duration;
};

constexpr std::array<RoundPlan, 3> PLANS{
    {{Round::Kind::LINK_HOLDS, "the link to the device holds", std::chrono::seconds(20)},
     {Round::Kind::LINK_IS_LOST, "the link to the device is lost", std::chrono::seconds(8)},
     {Round::Kind::LINK_IS_OUT_OF_STEP, "the device is out of step", std::chrono::seconds(8)}}};

void playRounds(std::chrono::seconds duration, unsigned seed, Balance& balance) {
    std::mt19937 random(seed);
    const Clock::time_point end = Clock::now() + duration;
    for (std::size_t i = 0; Clock::now() < end && balance.addsUp(); ++i) {
        const RoundPlan& plan = PLANS.at(i % PLANS.size());
        std::cout << "round " << i + 1 << ", " << plan.name << ": ";
        Sandbox::renewNetwork();
        Round round(plan.kind, random());
        round.play(plan.duration, balance, std::cout);
    }
}

int soak(std::chrono::seconds duration, unsigned seed) {
    const SanitizerReports reports;
    Balance balance;
    std::cout << "seed " << seed << std::endl;
    try {
        playRounds(duration, seed, balance);
    } catch (const std::exception& failure) {
        balance.complain(failure.what());
    }
    if (!reports.text().empty()) {
        balance.complain(reports.text());
    }
    balance.print(std::cout);
    std::cout << "soak: " << balance.summary() << " (seed " << seed << ")" << std::endl;
    return balance.addsUp() ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("Lets clients and a device misbehave at random and balances what became of it.");
    double minutes = 0;
    unsigned seed = std::random_device()();
    app.add_option("MINUTES", minutes, "How long; the round that has begun is played to its end")
        ->required()
        ->check(CLI::PositiveNumber);
    app.add_option("--seed", seed, "Of an earlier run: the same faults and kinds of visits");
    CLI11_PARSE(app, argc, argv);
    try {
        const Sandbox sandbox({programs::SOURCE_DIRECTORY, programs::BUILD_DIRECTORY});
        const auto duration = std::chrono::duration_cast<std::chrono::seconds>(
            std::chrono::duration<double, std::ratio<60>>(minutes));
        sandbox.run([&] { return soak(duration, seed); });
    } catch (const std::exception& failure) {
        std::cerr << "soak: no private namespaces: " << failure.what() << std::endl;
        return EXIT_FAILURE;
    }
}
