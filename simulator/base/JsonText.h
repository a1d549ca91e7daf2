#pragma once

#include <json/value.h>

#include <optional>
#include <string>
#include <vector>

namespace sim {

/// Parses one array or object, strictly: no comments, no key twice, nothing before or after it.
/// \throws std::runtime_error that says on one line what is wrong with it.
[[nodiscard]] Json::Value parseJson(const std::string& text);

/// Parses an array of strings, strictly.
/// \throws std::runtime_error that says on one line what is wrong with it.
[[nodiscard]] std::vector<std::string> parseWords(const std::string& text);

/// An array of `words`.
[[nodiscard]] Json::Value wordsJson(const std::vector<std::string>& words);

/// Parses as the service does: comments are kept, and what follows the text is not looked at.
/// \return none for what is no JSON
[[nodiscard]] std::optional<Json::Value> parseLeniently(const std::string& text);

/// `value` on one line, without blanks; bytes that are not ASCII stay as they are.
[[nodiscard]] std::string compactJson(const Json::Value& value);

/// `value` with one member a line, for files that people read.
[[nodiscard]] std::string readableJson(const Json::Value& value);

}  // namespace sim
