#include "client/Utf8.h"

#include <array>

namespace reticle {

namespace {

constexpr unsigned CONTINUATION_BITS = 6;
constexpr unsigned char CONTINUATION_MASK = 0xC0;
constexpr unsigned char CONTINUATION_MARK = 0x80;

/// What a first byte announces.
struct SequenceForm {
    unsigned char mask;
    unsigned char mark;
    std::size_t bytes;
    /// Smaller values have a shorter form, so that this one is overlong.
    char32_t smallest;
};

constexpr std::array<SequenceForm, 4> SEQUENCE_FORMS = {{{0x80, 0x00, 1, 0x0},
                                                         {0xE0, 0xC0, 2, 0x80},
                                                         {0xF0, 0xE0, 3, 0x800},
                                                         {0xF8, 0xF0, 4, 0x10000}}};

bool isScalarValue(char32_t value) {
    constexpr char32_t FIRST_SURROGATE = 0xD800;
    constexpr char32_t LAST_SURROGATE = 0xDFFF;
    constexpr char32_t LAST = 0x10FFFF;
    return value <= LAST && (value < FIRST_SURROGATE || value > LAST_SURROGATE);
}

std::optional<CodePoint> decode(std::string_view text, const SequenceForm& form) {
    if (text.size() < form.bytes) {
        return std::nullopt;
    }
    char32_t value = static_cast<unsigned char>(text[0]) & static_cast<unsigned char>(~form.mask);
    for (const char character : text.substr(1, form.bytes - 1)) {
        const auto byte = static_cast<unsigned char>(character);
        if ((byte & CONTINUATION_MASK) != CONTINUATION_MARK) {
            return std::nullopt;
        }
        value =
            (value << CONTINUATION_BITS) | (byte & static_cast<unsigned char>(~CONTINUATION_MASK));
    }
    if (value < form.smallest || !isScalarValue(value)) {
        return std::nullopt;
    }
    return CodePoint{value, form.bytes};
}

}  // namespace

std::optional<CodePoint> firstCodePoint(std::string_view text) {
    for (const SequenceForm& form : SEQUENCE_FORMS) {
        if (!text.empty() && (static_cast<unsigned char>(text[0]) & form.mask) == form.mark) {
            return decode(text, form);
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> findInvalidUtf8(std::string_view text) {
    std::size_t position = 0;
    while (position < text.size()) {
        const auto codePoint = firstCodePoint(text.substr(position));
        if (!codePoint) {
            return position;
        }
        position += codePoint->bytes;
    }
    return std::nullopt;
}

}  // namespace reticle
