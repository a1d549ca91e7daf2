#include <gtest/gtest.h>

#include <string>

#include "client/FrameCheck.h"
#include "client/FrameFormat.h"

namespace reticle {

namespace {

std::string header() {
    const FrameHeader bytes = frameHeader(1);
    return {bytes.begin(), bytes.end()};
}

/// What is said of a header; empty for nothing.
std::string whatOf(const std::string& bytes) {
    const auto mistake = findSyncMistake(bytes);
    return mistake ? mistake->what : "";
}

std::string remedyOf(const std::string& bytes) {
    const auto mistake = findSyncMistake(bytes);
    return mistake ? mistake->remedy : "";
}

TEST(FrameCheck, ZerosAreTakenForAllSyncBytesButTheLast) {
    std::string zeros(FRAME_SYNC_BYTES - 1, '\0');
    EXPECT_EQ(whatOf(zeros + header().substr(FRAME_SYNC_BYTES - 1)), "");
    zeros += header().substr(FRAME_SYNC_BYTES - 1);
    zeros[FRAME_SYNC_BYTES - 1] = '\0';
    EXPECT_EQ(whatOf(zeros), "byte 31 of the frame is 00, not 1F");
}

TEST(FrameCheck, EachWrongSyncByteIsNamed) {
    for (std::size_t at = 0; at < FRAME_SYNC_BYTES; ++at) {
        std::string wrong = header();
        wrong[at] = '\xA5';
        EXPECT_EQ(whatOf(wrong).find("byte " + std::to_string(at) + " of the frame is A5, not "),
                  0U)
            << whatOf(wrong);
    }
    EXPECT_EQ(remedyOf("\xFF"), "begin each frame with the bytes 00 01 02 ... 1F");
}

TEST(FrameCheck, ATextWithoutAHeaderIsTold) {
    EXPECT_EQ(whatOf(R"({"action":"RETICLES_GET_ALL"})"), "starts with '{': no header");
    EXPECT_EQ(whatOf("GET / HTTP/1.1\r\n"), "starts with 'G': no header");
    EXPECT_EQ(remedyOf("{"), "put a header of 36 bytes in front of each body");
}

TEST(FrameCheck, CountingFromOneIsTold) {
    std::string wrong = header();
    for (std::size_t at = 0; at < FRAME_SYNC_BYTES; ++at) {
        wrong[at] = static_cast<char>(at + 1);
    }
    EXPECT_EQ(whatOf(wrong), "the sync bytes count from 01 to 20");
}

TEST(FrameCheck, AMissingSyncByteIsTold) {
    for (std::size_t at = 0; at + 3 < FRAME_SYNC_BYTES; ++at) {
        std::string wrong = header() + "{";
        wrong.erase(at, 1);
        EXPECT_NE(whatOf(wrong).find(" is missing, those behind it are shifted by one"),
                  std::string::npos)
            << at << ": " << whatOf(wrong);
    }
    EXPECT_EQ(whatOf((header() + "{").erase(10, 1)),
              "sync byte 0A is missing, those behind it are shifted by one");
}

TEST(FrameCheck, AByteTooManyIsTold) {
    EXPECT_EQ(whatOf(header().insert(10, 1, '\x7F')),
              "a byte too many stands before sync byte 0A, those behind it are shifted by one");
    EXPECT_EQ(whatOf(header().insert(0, 1, '\0')),
              "a byte too many stands before sync byte 02, those behind it are shifted by one");
}

}  // namespace

}  // namespace reticle
