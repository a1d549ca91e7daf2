#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "client/FrameFormat.h"
#include "client/Request.h"
#include "tools/reticlectl/trace/RequestCutter.h"

namespace reticlectl {

namespace {

using Kind = RequestCutter::Piece::Kind;
using Pieces = std::vector<std::pair<Kind, std::string>>;

/// What comes out of `bytes`, fed `step` at a time.
Pieces cut(const std::string& bytes, std::size_t step) {
    RequestCutter cutter;
    Pieces pieces;
    const auto take = [&] {
        while (auto piece = cutter.next()) {
            pieces.emplace_back(piece->kind, piece->bytes);
        }
    };
    for (std::size_t at = 0; at < bytes.size(); at += step) {
        cutter.feed(std::string_view(bytes).substr(at, step));
        take();
    }
    cutter.end();
    take();
    EXPECT_EQ(cutter.held(), "");
    return pieces;
}

const std::string FRAME = reticle::encodeFrame(R"({"action":"RETICLES_GET_ALL"})");

TEST(RequestCutter, FramesComeOutWholeHoweverTheyCame) {
    for (std::size_t step = 1; step <= 2 * FRAME.size(); ++step) {
        EXPECT_EQ(cut(FRAME + FRAME, step), (Pieces{{Kind::FRAME, FRAME}, {Kind::FRAME, FRAME}}))
            << step;
    }
}

TEST(RequestCutter, NothingOfAFrameComesOutBeforeItIsWhole) {
    RequestCutter cutter;
    cutter.feed(FRAME.substr(0, FRAME.size() - 1));
    EXPECT_FALSE(cutter.next());
    EXPECT_EQ(cutter.held(), FRAME.substr(0, FRAME.size() - 1));
}

TEST(RequestCutter, TheBodyIsWhatFollowsTheHeader) {
    RequestCutter cutter;
    cutter.feed(FRAME);
    EXPECT_EQ(cutter.next().value().body(), reticle::listRequest());
}

TEST(RequestCutter, TheLargestFrameIsHeld) {
    const std::string frame = reticle::encodeFrame(std::string(4194303, 'x'));
    EXPECT_TRUE(cut(frame, 65536) == (Pieces{{Kind::FRAME, frame}}));
}

TEST(RequestCutter, ARefusedHeaderTakesItsBytesAndNoMore) {
    const std::string wrong = FRAME.substr(0, 32) + std::string(4, '\0');
    EXPECT_EQ(cut(wrong + FRAME, 1000),
              (Pieces{{Kind::REFUSED_HEADER, wrong}, {Kind::FRAME, FRAME}}));
}

TEST(RequestCutter, WhatCanBeNoHeaderIsNotHeld) {
    EXPECT_EQ(cut("{ \"index\": 1234 }" + std::string(19, ' ') + FRAME, 20),
              (Pieces{{Kind::REFUSED_HEADER, "{ \"index\": 1234 }   "},
                      {Kind::REFUSED_REST, std::string(16, ' ')},
                      {Kind::FRAME, FRAME}}));
}

TEST(RequestCutter, WhatTheClientCutsShortComesOutAtItsEnd) {
    EXPECT_EQ(cut(FRAME.substr(0, 35), 7), (Pieces{{Kind::CUT_HEADER, FRAME.substr(0, 35)}}));
    EXPECT_EQ(cut(FRAME.substr(0, 36), 7), (Pieces{{Kind::CUT_FRAME, FRAME.substr(0, 36)}}));
    EXPECT_EQ(cut(FRAME + FRAME.substr(0, 50), 7),
              (Pieces{{Kind::FRAME, FRAME}, {Kind::CUT_FRAME, FRAME.substr(0, 50)}}));
}

}  // namespace

}  // namespace reticlectl
