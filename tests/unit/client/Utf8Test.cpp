#include <gtest/gtest.h>

#include <string>

#include "client/Utf8.h"

namespace reticle {

namespace {

struct Case {
    const char* what;
    std::string_view text;
    /// Offset of the first wrong byte, nothing for a valid text.
    std::optional<std::size_t> invalidAt;
};

using std::string_view_literals::operator""sv;

const Case CASES[] = {
    {"empty", ""sv, {}},
    {"ASCII", "mil-dot"sv, {}},
    {"NUL is a character", "a\0b"sv, {}},
    {"last of one byte", "\x7F"sv, {}},
    {"first of two bytes", "\xC2\x80"sv, {}},
    {"last of two bytes", "\xDF\xBF"sv, {}},
    {"first of three bytes", "\xE0\xA0\x80"sv, {}},
    {"last before the surrogates", "\xED\x9F\xBF"sv, {}},
    {"first after the surrogates", "\xEE\x80\x80"sv, {}},
    {"last of three bytes", "\xEF\xBF\xBF"sv, {}},
    {"first of four bytes", "\xF0\x90\x80\x80"sv, {}},
    {"last of all", "\xF4\x8F\xBF\xBF"sv, {}},
    {"a lone continuation", "ab\x80"sv, 2},
    {"Latin-1", "caf\xE9 "sv, 3},
    {"cut off after the first byte", "a\xC3"sv, 1},
    {"cut off after the second byte", "\xE2\x82"sv, 0},
    {"cut off after the third byte", "\xF0\x9F\x98"sv, 0},
    {"continuation missing within", "\xE2\x82z"sv, 0},
    {"overlong, two bytes", "\xC0\x80"sv, 0},
    {"overlong, two bytes, last", "\xC1\xBF"sv, 0},
    {"overlong, three bytes", "\xE0\x9F\xBF"sv, 0},
    {"overlong, four bytes", "\xF0\x8F\xBF\xBF"sv, 0},
    {"first surrogate", "\xED\xA0\x80"sv, 0},
    {"last surrogate", "\xED\xBF\xBF"sv, 0},
    {"above the last", "\xF4\x90\x80\x80"sv, 0},
    {"five-byte form", "\xF8\x88\x80\x80\x80"sv, 0},
    {"0xFE", "\xFE"sv, 0},
    {"0xFF", "x\xFF"sv, 1},
    {"UTF-16 with its mark", "\xFF\xFE\x41\x00"sv, 0},
};

TEST(Utf8, FindsTheFirstInvalidByte) {
    for (const Case& entry : CASES) {
        EXPECT_EQ(findInvalidUtf8(entry.text), entry.invalidAt) << entry.what;
    }
}

TEST(Utf8, DecodesEachLength) {
    EXPECT_EQ(firstCodePoint("A")->value, U'A');
    EXPECT_EQ(firstCodePoint("\xC3\xA9x")->value, U'\u00E9');
    EXPECT_EQ(firstCodePoint("\xC3\xA9x")->bytes, 2U);
    EXPECT_EQ(firstCodePoint("\xE5\x8D\x81")->value, U'\u5341');
    EXPECT_EQ(firstCodePoint("\xF0\x9F\x8E\xAF!")->value, U'\U0001F3AF');
    EXPECT_EQ(firstCodePoint("\xF0\x9F\x8E\xAF!")->bytes, 4U);
    EXPECT_FALSE(firstCodePoint(""));
}

}  // namespace

}  // namespace reticle
