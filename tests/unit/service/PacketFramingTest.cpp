// The frames of the client link: JsonRetriever's getPacketLength and buildNetPacket.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "processing/JsonRetriever.h"
#include "tests/support/Text.h"
#include "tests/unit/service/OutputCapture.h"

namespace reticled {
namespace {

constexpr std::string_view SYNC =
    "00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F "
    "10 11 12 13 14 15 16 17 18 19 1A 1B 1C 1D 1E 1F ";
constexpr std::string_view ZEROED_SYNC =
    "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
    "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 1F ";

using Header = std::array<std::uint8_t, FRAME_HEADER_SIZE>;

Header headerFromHex(std::string_view sync, std::string_view length) {
    const std::string bytes = fromHex(std::string(sync) + std::string(length));
    Header header{};
    EXPECT_EQ(bytes.size(), header.size());
    std::copy(bytes.begin(), bytes.end(), header.begin());
    return header;
}

int lengthIn(const Header& header) {
    return JsonRetriever::getPacketLength(header.data());
}

/// How a receiver walks the header, told step by step: a zero byte always counts as a match, any
/// other only if it is the value that is due, and a mismatch starts all over behind it.
int lengthByWalking(const Header& header) {
    int count = 0;
    bool isMatching = false;
    for (int i = 0; i < 32; ++i) {
        const int byte = header.at(static_cast<std::size_t>(i));
        if (byte == 0) {
            ++count;
            isMatching = true;
            continue;
        }
        if (isMatching && byte != count) {
            count = 0;
            isMatching = false;
            continue;
        }
        if (isMatching) {
            ++count;
        }
        if (count > 31) {
            const auto at = static_cast<std::size_t>(i);
            return static_cast<int>(static_cast<std::uint32_t>(header.at(at + 1)) << 24U |
                                    static_cast<std::uint32_t>(header.at(at + 2)) << 16U |
                                    static_cast<std::uint32_t>(header.at(at + 3)) << 8U |
                                    static_cast<std::uint32_t>(header.at(at + 4)));
        }
    }
    return 0;
}

class PacketFramingTest : public testing::Test {
protected:
    OutputCapture output;
};

TEST_F(PacketFramingTest, LengthIsReadMostSignificantByteFirst) {
    EXPECT_EQ(lengthIn(headerFromHex(SYNC, "00 00 00 0B")), 11);
    EXPECT_EQ(lengthIn(headerFromHex(SYNC, "01 02 03 04")), 0x01020304);
    EXPECT_EQ(output.out(),
              "total cnt = 32\njson is true, length = 11\n"
              "total cnt = 32\njson is true, length = 16909060\n");
}

TEST_F(PacketFramingTest, ZeroIsTakenForAnySyncByteButTheLast) {
    EXPECT_EQ(lengthIn(headerFromHex(ZEROED_SYNC, "00 00 00 0B")), 11);
    Header header = headerFromHex(SYNC, "00 00 00 0B");
    header[31] = 0;
    EXPECT_EQ(lengthIn(header), 0);
    header = headerFromHex(ZEROED_SYNC, "00 00 00 0B");
    header[31] = 0;
    EXPECT_EQ(lengthIn(header), 0);
}

TEST_F(PacketFramingTest, FirstByteMustBeZero) {
    Header header = headerFromHex(SYNC, "00 00 00 0B");
    header[0] = 1;
    EXPECT_EQ(lengthIn(header), 0);
    EXPECT_EQ(output.out(), "");
}

TEST_F(PacketFramingTest, SequenceThatStartsLateIsNotFound) {
    const std::string late = std::string("FF ") + std::string(SYNC);
    EXPECT_EQ(lengthIn(headerFromHex(late, "00 00 0B")), 0);
}

TEST_F(PacketFramingTest, HugeLengthsAreNegative) {
    EXPECT_EQ(lengthIn(headerFromHex(SYNC, "7F FF FF FF")), 2147483647);
    EXPECT_LT(lengthIn(headerFromHex(SYNC, "80 00 00 00")), 0);
    EXPECT_EQ(lengthIn(headerFromHex(SYNC, "FF FF FF FF")), -1);
    EXPECT_EQ(output.out(),
              "total cnt = 32\njson is true, length = 2147483647\n"
              "total cnt = 32\njson is true, length = 2147483648\n"
              "total cnt = 32\njson is true, length = 4294967295\n");
}

TEST_F(PacketFramingTest, LengthZeroIsZero) {
    EXPECT_EQ(lengthIn(headerFromHex(SYNC, "00 00 00 00")), 0);
    EXPECT_EQ(output.out(), "total cnt = 32\njson is true, length = 0\n");
}

TEST_F(PacketFramingTest, EveryChangeOfOneByteIsJudgedAsByWalking) {
    for (const std::string_view sync : {SYNC, ZEROED_SYNC}) {
        for (std::size_t position = 0; position < FRAME_HEADER_SIZE; ++position) {
            for (int value = 0; value <= UINT8_MAX; ++value) {
                Header header = headerFromHex(sync, "01 02 03 04");
                header.at(position) = static_cast<std::uint8_t>(value);
                ASSERT_EQ(lengthIn(header), lengthByWalking(header))
                    << "byte " << position << " is " << value;
            }
        }
    }
}

TEST_F(PacketFramingTest, RandomHeadersAreJudgedAsByWalking) {
    constexpr int HEADERS = 20'000;
    std::minstd_rand random;  // NOLINT(cert-msc*): the same headers in every run
    int accepted = 0;
    for (int i = 0; i < HEADERS; ++i) {
        Header header = headerFromHex(SYNC, "01 02 03 04");
        // Zeros, wrong bytes and copies of neighbours, few enough that many headers are good.
        for (unsigned changes = random() % 4; changes > 0; --changes) {
            const std::size_t position = random() % FRAME_HEADER_SIZE;
            const auto any = static_cast<std::uint8_t>(random());
            header.at(position) = random() % 3 == 0 ? any : 0;
        }
        const int expected = lengthByWalking(header);
        ASSERT_EQ(lengthIn(header), expected) << "header " << i;
        accepted += expected != 0 ? 1 : 0;
    }
    EXPECT_GT(accepted, HEADERS / 4);
    EXPECT_LT(accepted, HEADERS - HEADERS / 20);
}

TEST_F(PacketFramingTest, FrameOfATwoByteBodyIs38Bytes) {
    const std::vector<std::uint8_t> frame = JsonRetriever::buildNetPacket("{}");
    EXPECT_EQ(std::string(frame.begin(), frame.end()),
              fromHex(std::string(SYNC) + "00 00 00 02 7B 7D"));
}

TEST_F(PacketFramingTest, FrameCarriesAnyBodyUnchanged) {
    const std::string body = std::string("\0\xFF\n", 3) + std::string(70'000, 'x');
    const std::vector<std::uint8_t> frame = JsonRetriever::buildNetPacket(body);
    ASSERT_EQ(frame.size(), 70'003U + 36U);
    EXPECT_EQ(std::string(frame.begin(), frame.begin() + 36),
              fromHex(std::string(SYNC) + "00 01 11 73"));
    EXPECT_EQ(std::string(frame.begin() + 36, frame.end()), body);
}

TEST_F(PacketFramingTest, HeaderAloneCountsWith32Bits) {
    const auto textOf = [](std::size_t bodySize) {
        const auto header = JsonRetriever::buildNetHeader(bodySize);
        return std::string(header.begin(), header.end());
    };
    EXPECT_EQ(textOf(0x01020304), fromHex(std::string(SYNC) + "01 02 03 04"));
    // Where sizes have 32 bits themselves, this one is cut before.
    constexpr std::uint64_t TOO_LARGE = 0x1FFFFFFFE;
    EXPECT_EQ(textOf(static_cast<std::size_t>(TOO_LARGE)),
              fromHex(std::string(SYNC) + "FF FF FF FE"));
}

TEST_F(PacketFramingTest, FrameOfNothingIsAHeader) {
    const std::vector<std::uint8_t> frame = JsonRetriever::buildNetPacket("");
    EXPECT_EQ(std::string(frame.begin(), frame.end()), fromHex(std::string(SYNC) + "00 00 00 00"));
}

}  // namespace
}  // namespace reticled
