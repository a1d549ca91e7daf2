#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// How often `part` stands in `text`, without overlaps.
[[nodiscard]] std::size_t countOf(std::string_view part, std::string_view text);

/// `text`, `times` times in a row.
[[nodiscard]] std::string repeated(std::string_view text, std::size_t times);

/// The bytes that pairs of hexadecimal digits, with blanks and newlines between them, stand for.
/// \throws std::invalid_argument for anything else.
[[nodiscard]] std::string fromHex(std::string_view digits);

/// The whole file, byte for byte; empty when it cannot be read.
[[nodiscard]] std::string contentOfFile(const std::string& path);
