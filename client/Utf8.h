#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace reticle {

/// One character of a UTF-8 text.
struct CodePoint {
    char32_t value;
    /// How many bytes it takes in the text, 1 to 4.
    std::size_t bytes;
};

/// The character whose first byte stands at the begin of `text`. Nothing when the text is empty, is
/// cut off within the character or is not UTF-8 there: overlong forms, surrogates and values above
/// U+10FFFF are not. Any thread.
[[nodiscard]] std::optional<CodePoint> firstCodePoint(std::string_view text);

/// The offset of the first byte that does not belong to a UTF-8 character; nothing when all do.
/// Any thread.
[[nodiscard]] std::optional<std::size_t> findInvalidUtf8(std::string_view text);

}  // namespace reticle
