#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace sim {

/// The number that the whole of `text` is, in decimal; none where it is no number or not one of that type.
template <typename Number>
[[nodiscard]] std::optional<Number> numberIn(std::string_view text) {
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

}  // namespace sim
