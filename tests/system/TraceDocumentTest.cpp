#include <gtest/gtest.h>

#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/Patience.h"
#include "tests/system/Programs.h"
#include "tests/system/SystemTest.h"
#include "tests/system/TracingProcess.h"
#include "tests/system/Transcript.h"
#include "tests/system/TranscriptPlayer.h"

namespace {

const std::string PROGRAM = "reticlectl trace";
const std::string PRINTS = "trace prints";

/// The options of the command line that begins a transcript.
std::vector<std::string> optionsIn(const std::string& instruction) {
    EXPECT_EQ(instruction.substr(0, PROGRAM.size()), PROGRAM);
    std::istringstream words(instruction.substr(PROGRAM.size()));
    std::vector<std::string> options;
    for (std::string word; words >> word;) {
        options.push_back(word);
    }
    return options;
}

/// What the document says of wrong clients is what trace prints, with the real service behind it.
class TraceDocumentTest : public SystemTest {
protected:
    // The player's client is there until the output has come: its end is printed, too.
    static void play(Transcript transcript) {
        SCOPED_TRACE("transcript at " + transcript.place);
        const TracingProcess trace(optionsIn(transcript.steps.front().instruction));
        std::string expected;
        bool isEnd = false;
        std::erase_if(transcript.steps, [&](const sim::Step& step) {
            if (step.instruction.starts_with(PRINTS)) {
                expected += step.text.value_or("") + '\n';
                isEnd = isEnd || step.instruction == PRINTS + " at last";
            }
            return step.instruction.starts_with(PRINTS) || step.instruction.starts_with(PROGRAM);
        });
        const FlashFiles fresh;
        TranscriptPlayer player(fresh, TracingProcess::PORT);
        player.play(transcript);
        expected = TracingProcess::normalised(expected);
        const auto shown = [&] { return shownOf(trace.normalisedOutput(), expected); };
        if (isEnd) {
            EXPECT_TRUE(eventually([&] { return shown().ends_with(expected); })) << shown();
            return;
        }
        EXPECT_TRUE(eventually([&] { return shown().size() >= expected.size(); }));
        EXPECT_EQ(shown(), expected);
    }

    /// Most transcripts leave out how each begins.
    static std::string shownOf(const std::string& output, const std::string& expected) {
        const bool isWhole = expected.find("listening") != std::string::npos;
        return isWhole
                   ? output
                   : std::regex_replace(
                         output, std::regex(".* (listening on|#[0-9]+ connected from) .*\n"), "");
    }
};

TEST_F(TraceDocumentTest, EveryTranscriptIsTrue) {
    const std::vector<Transcript> transcripts =
        Transcript::readFrom(programs::SOURCE_DIRECTORY + "/docs/trace.md");
    EXPECT_GE(transcripts.size(), 10U);
    for (const Transcript& transcript : transcripts) {
        play(transcript);
    }
}

}  // namespace
