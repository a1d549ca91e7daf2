#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "client/FrameFormat.h"
#include "tests/schema/Schema.h"
#include "tests/support/Text.h"
#include "tests/system/Programs.h"
#include "tests/system/Transcript.h"

namespace {

using reticle::FRAME_HEADER_BYTES;

// The body of a step that shows a frame as its body or as the bytes on the wire.
std::string bodyOf(const sim::Step& step) {
    const std::string text = step.text.value();
    return step.instruction.ends_with(" hex") ? fromHex(text).substr(FRAME_HEADER_BYTES) : text;
}

/// The bodies in the transcripts of the protocol's document.
class DocumentedTrafficTest : public testing::Test {
protected:
    // A request that leads to nothing is one that the service cannot read.
    void checkRequest(const sim::Step& step, const sim::Step& next) {
        const bool isReadable = next.instruction != "client receives nothing";
        EXPECT_EQ(requests.accepts(bodyOf(step)), isReadable)
            << "line " << step.line << ": " << requests.complaintAbout(bodyOf(step));
        ++checked;
    }

    void checkReply(const sim::Step& step) {
        EXPECT_EQ(replies.complaintAbout(bodyOf(step)), "") << "line " << step.line;
        ++checked;
    }

    void check(const Transcript& transcript) {
        for (std::size_t i = 0; i < transcript.steps.size(); ++i) {
            const sim::Step& step = transcript.steps[i];
            if (step.instruction.starts_with("client sends")) {
                checkRequest(step, transcript.steps.at(i + 1));
            } else if (step.instruction.starts_with("client receives") && step.text) {
                checkReply(step);
            }
        }
    }

    const Schema requests{"request"};
    const Schema replies{"reply"};
    std::size_t checked = 0;
};

TEST_F(DocumentedTrafficTest, SchemasAgreeWithTheProtocolsDocument) {
    for (const Transcript& transcript :
         Transcript::readFrom(programs::SOURCE_DIRECTORY + "/docs/client-protocol.md")) {
        check(transcript);
    }
    EXPECT_GT(checked, 0U);
}

}  // namespace
