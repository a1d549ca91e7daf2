#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/system/Programs.h"
#include "tests/system/SystemTest.h"
#include "tests/system/Transcript.h"
#include "tests/system/TranscriptPlayer.h"

namespace {

/// The examples in the protocol documents are true to the byte.
class TranscriptsTest : public SystemTest, public testing::WithParamInterface<std::string> {};

TEST_P(TranscriptsTest, EveryTranscriptOfTheDocumentIsTrue) {
    const std::vector<Transcript> transcripts =
        Transcript::readFrom(programs::SOURCE_DIRECTORY + "/docs/" + GetParam() + "-protocol.md");
    EXPECT_FALSE(transcripts.empty());
    for (const Transcript& transcript : transcripts) {
        SCOPED_TRACE("transcript at " + transcript.place);
        const FlashFiles fresh;
        TranscriptPlayer(fresh).play(transcript);
    }
}

INSTANTIATE_TEST_SUITE_P(Documents, TranscriptsTest, testing::Values("client", "rtos"),
                         [](const auto& document) { return document.param; });

}  // namespace
