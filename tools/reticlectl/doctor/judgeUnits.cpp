#include "tools/reticlectl/doctor/judgeUnits.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <string_view>
#include <utility>

namespace reticlectl {

namespace {

constexpr const char* UNIT_SUBJECT = "unit";
constexpr const char* CHECK_SUBJECT = "health check";
constexpr const char* JOURNAL_SUBJECT = "journal";

std::string firstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

/// Why nothing is known of units; nothing where it is.
std::optional<std::string> whyUnknown(const std::optional<ProgramRun>& show) {
    if (!show) {
        return "not looked at: there is no systemctl";
    }
    if (!show->hasSucceeded) {
        return "not looked at: systemctl says \"" + firstLine(show->output) + '"';
    }
    return std::nullopt;
}

Finding judgeActive(UnitProperties& unit) {
    const std::string& restarts = unit["NRestarts"];
    std::string text = "active since " + unit["ActiveEnterTimestamp"];
    if (!restarts.empty() && restarts != "0") {
        return {UNIT_SUBJECT, Verdict::LOOK, text + ", after " + restarts + " restarts of its own",
                "see in the journal what ended it: an unknown action of a client does, by design"};
    }
    if (unit["UnitFileState"] == "disabled") {
        return {UNIT_SUBJECT, Verdict::LOOK, text + ", but not started at boot",
                "systemctl enable reticled.service"};
    }
    return {UNIT_SUBJECT, Verdict::OK, text + ", no restart"};
}

/// Whether a line of the log asks for something, as operations.md has it. Texts of clients and of the
/// RTOS, which may say anything, stand within lines.
bool isComplaint(std::string_view line) {
    static constexpr auto BEGINNINGS = std::to_array<std::string_view>(
        {"Cannot allocate memory", "Error", "Exceeded stackLimit", "Exception is caught",
         "Failed to retrieve packet length", "Too many open files", "Wrong json key",
         "_clientRoutine, exception: ", "_handlerRoutine, exception: ",
         "_serverRoutine, exception: ", "responseThread, exception: "});
    return line.ends_with("Assertion '_M_get() != nullptr' failed.") ||
           std::any_of(BEGINNINGS.begin(), BEGINNINGS.end(),
                       [line](std::string_view text) { return line.starts_with(text); });
}

/// "TIME TEXT" of "TIME MACHINE PROGRAM[PROCESS]: TEXT" where the text is a complaint.
std::optional<std::string> complaintIn(const std::string& line) {
    constexpr std::string_view END_OF_PROGRAM = "]: ";
    const std::size_t end = line.find(END_OF_PROGRAM);
    if (end == std::string::npos) {
        return std::nullopt;
    }
    const std::string text = line.substr(end + END_OF_PROGRAM.size());
    return isComplaint(text) ? std::optional(line.substr(0, line.find(' ')) + ' ' + text)
                             : std::nullopt;
}

}  // namespace

UnitProperties parseProperties(const std::string& text) {
    UnitProperties properties;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t sign = line.find('=');
        if (sign != std::string::npos) {
            properties[line.substr(0, sign)] = line.substr(sign + 1);
        }
    }
    return properties;
}

std::vector<std::string> showUnit(const std::string& unit) {
    constexpr const char* PROPERTIES =
        "--property=LoadState,ActiveState,SubState,UnitFileState,NRestarts,ActiveEnterTimestamp";
    return {"systemctl", "--no-pager", "show", unit, PROPERTIES};
}

std::vector<std::string> readJournal() {
    // The service may log into a journal of its own.
    return {"journalctl",
            "--no-pager",
            "--quiet",
            "--boot",
            "--namespace=*",
            "--lines=2000",
            "--output=short-iso",
            "--unit=reticled.service"};
}

Finding judgeService(const std::optional<ProgramRun>& show) {
    if (const auto reason = whyUnknown(show)) {
        return {UNIT_SUBJECT, Verdict::OK, *reason};
    }
    UnitProperties unit = parseProperties(show->output);
    const std::string state = unit["ActiveState"] + " (" + unit["SubState"] + ")";
    if (unit["LoadState"] == "not-found") {
        return {UNIT_SUBJECT, Verdict::OK, "there is no reticled.service"};
    }
    if (unit["ActiveState"] == "active") {
        return judgeActive(unit);
    }
    if (unit["ActiveState"] == "inactive") {
        return {UNIT_SUBJECT, Verdict::LOOK, "reticled.service is " + state,
                "systemctl start reticled.service, unless the service is started otherwise"};
    }
    return {UNIT_SUBJECT, Verdict::BAD, "reticled.service is " + state,
            "journalctl --unit reticled.service tells why; the port may be taken"};
}

Finding judgeHealthCheck(const std::optional<ProgramRun>& timer,
                         const std::optional<ProgramRun>& check) {
    for (const auto* show : {&timer, &check}) {
        if (const auto reason = whyUnknown(*show)) {
            return {CHECK_SUBJECT, Verdict::OK, *reason};
        }
    }
    UnitProperties timerUnit = parseProperties(timer->output);
    UnitProperties checkUnit = parseProperties(check->output);
    if (timerUnit["LoadState"] == "not-found") {
        return {CHECK_SUBJECT, Verdict::OK, "there is no reticled-health.timer"};
    }
    if (checkUnit["ActiveState"] == "failed") {
        return {CHECK_SUBJECT, Verdict::LOOK, "the last one got no answer",
                "see whether the list below is answered now"};
    }
    if (timerUnit["ActiveState"] != "active") {
        return {CHECK_SUBJECT, Verdict::LOOK,
                "reticled-health.timer is " + timerUnit["ActiveState"] +
                    ": nobody notices a lost link to the RTOS",
                "systemctl enable --now reticled.service starts both"};
    }
    return {CHECK_SUBJECT, Verdict::OK, "the timer runs, and the last check found no fault"};
}

Finding judgeJournal(const std::optional<ProgramRun>& journal) {
    if (!journal) {
        return {JOURNAL_SUBJECT, Verdict::OK, "not looked at: there is no journalctl"};
    }
    std::vector<std::string> complaints;
    std::size_t seen = 0;
    std::istringstream lines(journal->output);
    for (std::string line; std::getline(lines, line); ++seen) {
        if (auto complaint = complaintIn(line)) {
            complaints.push_back(std::move(*complaint));
        }
    }
    if (!journal->hasSucceeded || seen == 0) {
        return {JOURNAL_SUBJECT, Verdict::OK,
                "no line of reticled.service since the boot, or none that this user may read"};
    }
    const std::string where = " in the last " + std::to_string(seen) + " lines";
    if (complaints.empty()) {
        return {JOURNAL_SUBJECT, Verdict::OK, "no error" + where};
    }
    constexpr std::size_t MOST_SHOWN = 3;
    std::string text = "errors" + where + ": " + std::to_string(complaints.size());
    for (std::size_t at = complaints.size() - std::min(complaints.size(), MOST_SHOWN);
         at < complaints.size(); ++at) {
        text += '\n' + complaints[at];
    }
    return {JOURNAL_SUBJECT, Verdict::LOOK, text,
            "journalctl --namespace='*' --unit reticled.service has all; operations.md says what "
            "each asks for"};
}

}  // namespace reticlectl
