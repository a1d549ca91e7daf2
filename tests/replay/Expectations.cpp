#include "tests/replay/Expectations.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "simulator/session/SessionReader.h"
#include "simulator/session/SessionWriter.h"
#include "simulator/session/StepReader.h"
#include "tests/replay/ClientTexts.h"
#include "tests/system/Programs.h"

namespace fs = std::filesystem;

namespace {

const std::string SENDS = "client sends";
const std::string RECEIVES = "client receives";
const std::string RECEIVES_NOTHING = "client receives nothing";

fs::path sessionsDirectory() {
    return fs::path(programs::SOURCE_DIRECTORY) / "tests" / "replay" / "sessions";
}

std::ifstream openInput(const std::string& path) {
    std::ifstream input(path, std::ios::binary);
    if (!input) {
        throw std::runtime_error(path + " is missing: run scripts/replay-expectations");
    }
    return input;
}

std::vector<sim::Step> readSteps(const std::string& path) {
    std::ifstream input = openInput(path);
    return sim::StepReader(input).rest();
}

[[noreturn]] void failAt(const std::string& path, const sim::Step& step) {
    throw std::runtime_error(path + ", line " + std::to_string(step.line) + ": \"" +
                             step.instruction + "\" does not belong here");
}

std::ofstream openOutput(const std::string& path) {
    std::ofstream output(path, std::ios::binary | std::ios::trunc);
    output.exceptions(std::ios::badbit | std::ios::failbit);
    return output;
}

}  // namespace

Expectations::Expectations(const std::string& name)
    : _stem((sessionsDirectory() / name).string()) {}

std::vector<std::string> Expectations::sessionNames() {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(sessionsDirectory())) {
        if (entry.path().extension() == ".session") {
            names.push_back(entry.path().stem().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> Expectations::clientTexts() const {
    std::vector<std::string> texts;
    for (const sim::Step& step : readSteps(_clientPath())) {
        if (step.instruction != SENDS || !step.text) {
            failAt(_clientPath(), step);
        }
        texts.push_back(*step.text);
    }
    return texts;
}

std::vector<std::optional<std::string>> Expectations::replies() const {
    std::vector<std::optional<std::string>> replies;
    for (const sim::Step& step : readSteps(_repliesPath())) {
        if (step.instruction != (step.text ? RECEIVES : RECEIVES_NOTHING)) {
            failAt(_repliesPath(), step);
        }
        replies.push_back(step.text);
    }
    return replies;
}

void Expectations::makeClientTexts() const {
    if (fs::exists(_clientPath())) {
        return;
    }
    std::ifstream session = openInput(sessionPath());
    std::ofstream output = openOutput(_clientPath());
    for (const std::string& text : ::clientTexts(sim::SessionReader(session).read())) {
        sim::writeStep(output, SENDS, text);
    }
}

void Expectations::writeReplies(const std::vector<std::optional<std::string>>& replies) const {
    std::ofstream output = openOutput(_repliesPath());
    for (const std::optional<std::string>& reply : replies) {
        if (reply) {
            sim::writeStep(output, RECEIVES, *reply);
        } else {
            output << RECEIVES_NOTHING << '\n';
        }
    }
}
