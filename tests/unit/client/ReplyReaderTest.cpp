#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "client/FrameFormat.h"
#include "tools/reticlectl/trace/ReplyReader.h"

namespace reticlectl {

namespace {

using Event = ReplyReader::Event;

/// The texts of the replies in `bytes`, read `step` at a time; "none" where there is no frame.
std::vector<std::string> read(const std::string& bytes, std::size_t step) {
    ReplyReader reader;
    std::vector<std::string> texts;
    for (std::size_t at = 0; at < bytes.size(); at += step) {
        std::string_view part = std::string_view(bytes).substr(at, step);
        while (!part.empty()) {
            const Event event = reader.read(part);
            if (event != Event::NONE) {
                texts.push_back(event == Event::REPLY ? reader.text() : "none");
            }
        }
    }
    return texts;
}

TEST(ReplyReader, RepliesAreReadHoweverTheyCome) {
    const std::string bytes =
        reticle::encodeFrame("one") + reticle::encodeFrame("") + reticle::encodeFrame("three");
    for (std::size_t step = 1; step <= bytes.size(); ++step) {
        EXPECT_EQ(read(bytes, step), (std::vector<std::string>{"one", "", "three"})) << step;
    }
}

TEST(ReplyReader, WhatIsNoFrameIsToldOnceAndAtItsFirstBytes) {
    EXPECT_EQ(read("HTTP/1.1 400 Bad Request\r\n\r\n" + reticle::encodeFrame("x"), 4),
              std::vector<std::string>{"none"});
}

TEST(ReplyReader, ATextThatIsTooLongIsCountedAndNotKept) {
    const std::string longest(ReplyReader::KEPT_BYTES, 'x');
    EXPECT_TRUE(read(reticle::encodeFrame(longest), 65536) == std::vector<std::string>{longest});
    EXPECT_EQ(read(reticle::encodeFrame(longest + 'x') + reticle::encodeFrame("next"), 65536),
              (std::vector<std::string>{"", "next"}));
}

}  // namespace

}  // namespace reticlectl
