#pragma once

#include <json/value.h>

#include <string>

namespace reticled::bench {

/// The text of a value in the layout of the library's writer, for what replies and messages to the
/// RTOS are made of: what needs no escape is copied by words. ASCII only.
[[nodiscard]] std::string bulkText(const Json::Value& value);

}  // namespace reticled::bench
