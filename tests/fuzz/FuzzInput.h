#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Between the parts of an input that has several; a line of its own, so that people can write
/// inputs.
inline constexpr std::string_view PART_SEPARATOR = "\n%%\n";

[[nodiscard]] std::string toText(const std::uint8_t* data, std::size_t size);

/// Cuts an input into `count` parts; parts that it does not have are empty.
[[nodiscard]] std::vector<std::string> toParts(std::string_view input, std::size_t count);

/// Ends the process, which is a finding, unless `holds`.
/// \param rule what should hold, for the report.
void require(bool holds, const char* rule);
