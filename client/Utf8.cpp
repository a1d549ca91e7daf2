#include "client/Utf8.h"

#include <utf8.h>

namespace reticle {

std::optional<CodePoint> firstCodePoint(std::string_view text) {
    constexpr std::size_t MAX_BYTES = 4;
    const std::string_view first = text.substr(0, MAX_BYTES);
    if (first.empty() || utf8::find_invalid(first.begin(), first.end()) == first.begin()) {
        return std::nullopt;
    }
    const char* next = first.data();
    const char32_t value = utf8::unchecked::next(next);
    return CodePoint{value, static_cast<std::size_t>(next - first.data())};
}

std::optional<std::size_t> findInvalidUtf8(std::string_view text) {
    const auto* const invalid = utf8::find_invalid(text.begin(), text.end());
    if (invalid == text.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(invalid - text.begin());
}

}  // namespace reticle
