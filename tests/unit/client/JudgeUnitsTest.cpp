#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "tools/reticlectl/doctor/judgeUnits.h"

namespace reticlectl {

namespace {

using testing::HasSubstr;

const std::string ACTIVE =
    "LoadState=loaded\nActiveState=active\nSubState=running\nUnitFileState=enabled\n"
    "NRestarts=0\nActiveEnterTimestamp=Sun 2026-11-22 00:00:00 UTC\n";

std::optional<ProgramRun> shown(const std::string& text) {
    return ProgramRun{true, text};
}

/// `ACTIVE` with a property that is otherwise.
std::string changed(const std::string& name, const std::string& value) {
    const std::size_t begin = ACTIVE.find(name) + name.size() + 1;
    return std::string(ACTIVE).replace(begin, ACTIVE.find('\n', begin) - begin, value);
}

TEST(JudgeUnits, AServiceThatRunsIsWell) {
    const Finding finding = judgeService(shown(ACTIVE));
    EXPECT_EQ(finding.verdict, Verdict::OK);
    EXPECT_EQ(finding.text, "active since Sun 2026-11-22 00:00:00 UTC, no restart");
}

TEST(JudgeUnits, RestartsWantALook) {
    const Finding finding = judgeService(shown(changed("NRestarts", "12")));
    EXPECT_EQ(finding.verdict, Verdict::LOOK);
    EXPECT_THAT(finding.text, HasSubstr("after 12 restarts"));
}

TEST(JudgeUnits, AServiceThatDoesNotComeBackAtBootWantsALook) {
    const Finding finding = judgeService(shown(changed("UnitFileState", "disabled")));
    EXPECT_EQ(finding.verdict, Verdict::LOOK);
    EXPECT_EQ(finding.advice, "systemctl enable reticled.service");
}

TEST(JudgeUnits, AServiceThatDoesNotRunWantsALookAndOneThatCannotIsBad) {
    EXPECT_EQ(judgeService(shown(changed("ActiveState", "inactive"))).verdict, Verdict::LOOK);
    EXPECT_EQ(judgeService(shown(changed("ActiveState", "failed"))).verdict, Verdict::BAD);
    EXPECT_EQ(judgeService(shown(changed("ActiveState", "activating"))).verdict, Verdict::BAD);
}

TEST(JudgeUnits, WhereThereIsNoSystemdItIsSaid) {
    const std::optional<ProgramRun> notBooted = ProgramRun{false, "System has not been\nCan't"};
    EXPECT_EQ(judgeService(std::nullopt).verdict, Verdict::OK);
    EXPECT_EQ(judgeService(std::nullopt).text, "not looked at: there is no systemctl");
    EXPECT_EQ(judgeService(notBooted).text,
              "not looked at: systemctl says \"System has not been\"");
    EXPECT_EQ(judgeHealthCheck(notBooted, shown(ACTIVE)).verdict, Verdict::OK);
    EXPECT_EQ(judgeJournal(std::nullopt).text, "not looked at: there is no journalctl");
    EXPECT_EQ(judgeService(shown("LoadState=not-found\n")).verdict, Verdict::OK);
    EXPECT_EQ(judgeHealthCheck(shown("LoadState=not-found\n"), shown(ACTIVE)).verdict, Verdict::OK);
}

TEST(JudgeUnits, AHealthCheckThatFailedOrDoesNotRunWantsALook) {
    EXPECT_EQ(judgeHealthCheck(shown(ACTIVE), shown(changed("ActiveState", "inactive"))).verdict,
              Verdict::OK);
    EXPECT_EQ(judgeHealthCheck(shown(ACTIVE), shown(changed("ActiveState", "failed"))).verdict,
              Verdict::LOOK);
    EXPECT_EQ(judgeHealthCheck(shown(changed("ActiveState", "inactive")), shown(ACTIVE)).verdict,
              Verdict::LOOK);
}

std::string journalLine(const std::string& text) {
    return "2026-11-22T00:00:00+0000 device reticled-foreground[812]: " + text + '\n';
}

TEST(JudgeUnits, AJournalWithoutErrorsIsWell) {
    const std::string lines =
        journalLine("json value: 1") + journalLine("handleJsReq, response: {\"Error\"}") +
        journalLine("\t\t\t\"name\" : \"Thread, exception: \",") +
        journalLine("\t\t\t\"name\" : \"Assertion '_M_get() != nullptr' failed.\",");
    EXPECT_EQ(judgeJournal(shown(lines)).verdict, Verdict::OK);
    EXPECT_EQ(judgeJournal(shown(lines)).text, "no error in the last 4 lines");
}

/// How the lines in the table of errors begin.
std::vector<std::string> documentedErrors() {
    std::vector<std::string> errors;
    std::ifstream document(PROJECT_SOURCE_DIRECTORY "/docs/operations.md");
    bool isOfErrors = false;
    for (std::string line; std::getline(document, line);) {
        if (line.starts_with('#')) {
            isOfErrors = line == "### Errors";
        } else if (constexpr std::string_view ROW = "| `"; isOfErrors && line.starts_with(ROW)) {
            errors.push_back(line.substr(ROW.size(), line.find('`', ROW.size()) - ROW.size()));
        }
    }
    return errors;
}

TEST(JudgeUnits, EachDocumentedErrorWantsALook) {
    const std::vector<std::string> errors = documentedErrors();
    EXPECT_GE(errors.size(), 20U);
    for (const std::string& error : errors) {
        EXPECT_EQ(judgeJournal(shown(journalLine(error))).verdict, Verdict::LOOK) << error;
    }
}

TEST(JudgeUnits, AJournalShowsTheLastThreeErrors) {
    const std::string lines = journalLine("Error during send response for socket: 7") +
                              journalLine("_handlerRoutine, exception: std::bad_alloc") +
                              journalLine("Failed to retrieve packet length") +
                              journalLine("total cnt = 32") +
                              journalLine("function: Assertion '_M_get() != nullptr' failed.");
    const Finding finding = judgeJournal(shown(lines));
    EXPECT_EQ(finding.verdict, Verdict::LOOK);
    EXPECT_EQ(finding.text,
              "errors in the last 5 lines: 4\n"
              "2026-11-22T00:00:00+0000 _handlerRoutine, exception: std::bad_alloc\n"
              "2026-11-22T00:00:00+0000 Failed to retrieve packet length\n"
              "2026-11-22T00:00:00+0000 function: Assertion '_M_get() != nullptr' failed.");
}

TEST(JudgeUnits, AJournalThatShowsNothingIsNoProofOfHealth) {
    EXPECT_THAT(judgeJournal(shown("")).text, HasSubstr("or none that this user may read"));
    EXPECT_THAT(judgeJournal(ProgramRun{false, "No journal"}).text,
                HasSubstr("this user may read"));
}

}  // namespace

}  // namespace reticlectl
