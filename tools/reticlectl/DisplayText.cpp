#include "tools/reticlectl/DisplayText.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <ios>
#include <sstream>

#include "client/Utf8.h"

namespace reticlectl {

namespace {

struct Range {
    char32_t first;
    char32_t last;

    [[nodiscard]] bool contains(char32_t value) const { return first <= value && value <= last; }
};

// C0 and C1 controls, line and paragraph separators, marks that change the writing direction.
constexpr auto STEERING = std::to_array<Range>({{0x00, 0x1F},
                                                {0x7F, 0x9F},
                                                {0x061C, 0x061C},
                                                {0x200E, 0x200F},
                                                {0x2028, 0x202E},
                                                {0x2066, 0x2069}});

// Combining marks, zero-width spaces and joiners, variation selectors.
constexpr auto WITHOUT_WIDTH = std::to_array<Range>({{0x0300, 0x036F},
                                                     {0x0483, 0x0489},
                                                     {0x0591, 0x05BD},
                                                     {0x064B, 0x065F},
                                                     {0x0E34, 0x0E3A},
                                                     {0x1AB0, 0x1AFF},
                                                     {0x1DC0, 0x1DFF},
                                                     {0x200B, 0x200D},
                                                     {0x20D0, 0x20FF},
                                                     {0xFE00, 0xFE0F},
                                                     {0xFE20, 0xFE2F},
                                                     {0xFEFF, 0xFEFF}});

// Hangul, kana, CJK, full-width forms, emoji.
constexpr auto WIDE = std::to_array<Range>({{0x1100, 0x115F},
                                            {0x2E80, 0x303E},
                                            {0x3041, 0xA4CF},
                                            {0xA960, 0xA97C},
                                            {0xAC00, 0xD7A3},
                                            {0xF900, 0xFAFF},
                                            {0xFE30, 0xFE6F},
                                            {0xFF00, 0xFF60},
                                            {0xFFE0, 0xFFE6},
                                            {0x1F300, 0x1F64F},
                                            {0x1F680, 0x1F6FF},
                                            {0x1F900, 0x1FAFF},
                                            {0x20000, 0x3FFFD}});

template <class Ranges>
bool isIn(const Ranges& ranges, char32_t value) {
    return std::any_of(ranges.begin(), ranges.end(),
                       [value](const Range& range) { return range.contains(value); });
}

std::string hexEscape(const char* prefix, char32_t value, int digits) {
    std::ostringstream text;
    text << prefix << std::hex << std::uppercase << std::setw(digits) << std::setfill('0')
         << static_cast<unsigned long>(value);
    return text.str();
}

std::string escaped(char32_t value) {
    constexpr char32_t LAST_OF_TWO_DIGITS = 0xFF;
    switch (value) {
        case U'\n':
            return "\\n";
        case U'\r':
            return "\\r";
        case U'\t':
            return "\\t";
        default:
            return value <= LAST_OF_TWO_DIGITS ? hexEscape("\\x", value, 2)
                                               : hexEscape("\\u", value, 4);
    }
}

}  // namespace

std::string printable(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const auto codePoint = reticle::firstCodePoint(text);
        const std::size_t bytes = codePoint ? codePoint->bytes : 1;
        if (!codePoint) {
            shown += escaped(static_cast<unsigned char>(text.front()));
        } else if (isIn(STEERING, codePoint->value)) {
            shown += escaped(codePoint->value);
        } else {
            shown += text.substr(0, bytes);
        }
        text.remove_prefix(bytes);
    }
    return shown;
}

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    while (const auto codePoint = reticle::firstCodePoint(text)) {
        const std::size_t columns = isIn(WIDE, codePoint->value) ? 2 : 1;
        width += isIn(WITHOUT_WIDTH, codePoint->value) ? 0 : columns;
        text.remove_prefix(codePoint->bytes);
    }
    return width;
}

}  // namespace reticlectl
