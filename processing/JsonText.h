#pragma once

#include <json/value.h>

#include <string>
#include <string_view>

namespace reticled {

/// Whether comments stay attached to the values that they stand beside.
enum class Comments {
    SKIP,     ///< for texts that the service only takes plain values from
    COLLECT,  ///< for values that are copied into a reply, comments included; the time is quadratic
              ///< in comments that follow a value on its line, so never for a client's text
};

/// What the library throws for a value of another type than asked for. It has a second exception, for nesting and for
/// a lack of memory: that one never means that a value is wrong.
using JsonTypeError = Json::LogicError;

/// Parses `text` with Json::Reader, which takes comments and texts that strict readers refuse.
///
/// Any thread.
/// \param text may hold zero bytes.
/// \param root receives the value; left null or partly filled where the text is wrong.
/// \return whether the whole text is JSON.
/// \throws Json::Exception on nesting deeper than the library's limit of 1000; std::bad_alloc.
bool parseJson(std::string_view text, Comments comments, Json::Value& root);

/// Writes `value` in the library's default layout: indented, members by ascending key, no newline
/// at the end. Every text that leaves the service is made here. Any thread.
/// \throws std::bad_alloc rather than writing a part.
[[nodiscard]] std::string writeJson(const Json::Value& value);

}  // namespace reticled
