#include <gtest/gtest.h>

#include <string>

#include "client/FrameFormat.h"
#include "tools/reticlectl/trace/HeaderCheck.h"

namespace reticlectl {

namespace {

std::string header(std::uint32_t bodyBytes) {
    const reticle::FrameHeader bytes = reticle::frameHeader(bodyBytes);
    return {bytes.begin(), bytes.end()};
}

/// What is said of a header; empty for nothing.
std::string whatOf(const std::string& bytes) {
    const auto mistake = findHeaderMistake(bytes);
    return mistake ? mistake->what : "";
}

std::string remedyOf(const std::string& bytes) {
    const auto mistake = findHeaderMistake(bytes);
    return mistake ? mistake->remedy : "";
}

TEST(HeaderCheck, AHeaderAsItShouldBeHasNoMistake) {
    EXPECT_EQ(whatOf(header(1)), "");
    EXPECT_EQ(whatOf(header(4194303)), "");
}

TEST(HeaderCheck, NoPartOfAGoodHeaderHasAMistake) {
    for (std::size_t size = 0; size < reticle::FRAME_HEADER_BYTES; ++size) {
        EXPECT_EQ(whatOf(header(0).substr(0, size)), "") << size;
    }
}

TEST(HeaderCheck, AMistakeOfTheSyncSequenceIsTold) {
    EXPECT_EQ(whatOf("{"), "starts with '{': no header");
}

TEST(HeaderCheck, ALengthWrittenTheOtherWayRoundIsTold) {
    EXPECT_EQ(whatOf(header(0x1D000000)), "486539264 bytes announced, 29 the other way round");
    EXPECT_EQ(remedyOf(header(0x1D000000)),
              "write the length with its most significant byte first");
    EXPECT_EQ(whatOf(header(0xFD000000)), "4244635648 bytes announced, 253 the other way round");
}

TEST(HeaderCheck, AnEmptyBodyIsTold) {
    EXPECT_EQ(whatOf(header(0)), "0 bytes announced");
}

TEST(HeaderCheck, ABodyOfTheServicesLimitIsTold) {
    EXPECT_EQ(whatOf(header(4194304)), "4194304 bytes announced");
    EXPECT_EQ(remedyOf(header(4194304)), "send a body of less than 4194304 bytes");
}

TEST(HeaderCheck, ANegativeLengthIsTold) {
    EXPECT_EQ(whatOf(header(0xFFFFFFFF)),
              "4294967295 bytes announced, which the service takes for a negative number");
}

TEST(HeaderCheck, TheOtherWayRoundTurnsTheBytesOfALength) {
    EXPECT_EQ(theOtherWayRound(0x01020304), 0x04030201U);
}

}  // namespace

}  // namespace reticlectl
