#include <json/json.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

#include "tools/reticlectl/commands/Commands.h"
#include "tools/reticlectl/commands/PingStatistics.h"
#include "tools/reticlectl/doctor/examineDevice.h"
#include "tools/reticlectl/outcome/JsonLine.h"
#include "tools/reticlectl/terminal/DisplayText.h"

namespace reticlectl {

namespace {

constexpr std::size_t VERDICT_COLUMNS = 6;
constexpr std::size_t SUBJECT_COLUMNS = 14;

const char* nameOf(Verdict verdict) {
    switch (verdict) {
        case Verdict::OK:
            return "ok";
        case Verdict::LOOK:
            return "look";
        case Verdict::BAD:
            return "bad";
    }
    return "";
}

const char* colorOf(Verdict verdict) {
    switch (verdict) {
        case Verdict::OK:
            return "\x1B[32m";
        case Verdict::LOOK:
            return "\x1B[33m";
        case Verdict::BAD:
            return "\x1B[1;31m";
    }
    return "";
}

/// Whether the service answers: all of the road at once.
Finding examineList(const Session& session) {
    const auto start = std::chrono::steady_clock::now();
    try {
        const std::size_t count = session.list().reticles.size();
        const Milliseconds time = std::chrono::steady_clock::now() - start;
        const std::string text = counted(count, "reticle") + " from " + session.peer() + ", in " +
                                 millisecondsText(time) + " ms";
        return count > 0 ? Finding{"list", Verdict::OK, text}
                         : Finding{"list", Verdict::LOOK, text,
                                   "where there should be some, the list file cannot be read: see "
                                   "the log"};
    } catch (const reticle::NoReply& error) {
        return {"list", Verdict::BAD, error.what(),
                "restart the service once the RTOS is up: a lost link stays lost"};
    } catch (const reticle::ClientError& error) {
        return {"list", Verdict::BAD, error.what()};
    }
}

std::string padded(std::string text, std::size_t columns) {
    text.resize(std::max(columns, text.size() + 1), ' ');
    return text;
}

/// `text` and its end of line, all lines but the first indented, none wider than the terminal.
std::string indented(const std::string& text, const Session& session) {
    constexpr std::size_t INDENTATION = VERDICT_COLUMNS + SUBJECT_COLUMNS;
    constexpr std::size_t NARROWEST = 20;
    const auto width = session.tableStyle().width;
    std::string indented;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        line = printable(line);
        std::istringstream pieces(
            width ? wrapped(line, std::max(*width, INDENTATION + NARROWEST) - INDENTATION) : line);
        for (std::string piece; std::getline(pieces, piece);) {
            indented += std::string(indented.empty() ? 0 : INDENTATION, ' ') + piece + '\n';
        }
    }
    return indented;
}

void print(const Session& session, const Finding& finding) {
    const bool hasColors = session.tableStyle().hasColors;
    const std::string verdict = padded(nameOf(finding.verdict), VERDICT_COLUMNS);
    session.out << (hasColors ? colorOf(finding.verdict) + verdict + "\x1B[0m" : verdict)
                << padded(finding.subject, SUBJECT_COLUMNS)
                << indented(finding.advice.empty() ? finding.text
                                                   : finding.text + "\n-> " + finding.advice,
                            session);
}

void printJson(const Session& session, const std::vector<Finding>& findings, Verdict worst) {
    Json::Value document;
    document["verdict"] = nameOf(worst);
    for (const Finding& finding : findings) {
        Json::Value one;
        one["subject"] = finding.subject;
        one["verdict"] = nameOf(finding.verdict);
        one["text"] = finding.text;
        one["advice"] = finding.advice;
        document["findings"].append(one);
    }
    session.out << printableJson(toJsonLine(document)) << '\n';
}

ExitStatus examine(const Session& session) {
    std::vector<Finding> findings = examineDevice();
    findings.push_back(examineList(session));
    const Verdict worst = std::max_element(findings.begin(), findings.end(),
                                           [](const Finding& one, const Finding& other) {
                                               return one.verdict < other.verdict;
                                           })
                              ->verdict;
    if (session.wantsJson) {
        printJson(session, findings, worst);
    } else {
        for (const Finding& finding : findings) {
            print(session, finding);
        }
    }
    return worst == Verdict::BAD ? ExitStatus::REFUSED : ExitStatus::DONE;
}

}  // namespace

void addDoctorCommand(CLI::App& app, const Session& session, ExitStatus& status) {
    auto* command = app.add_subcommand(
        "doctor", "On the device: look at all that the service stands on, and say what to do");
    command->callback([&session, &status] { status = examine(session); });
}

}  // namespace reticlectl
