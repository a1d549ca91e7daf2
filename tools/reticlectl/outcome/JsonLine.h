#pragma once

#include <string>

#include "tools/reticlectl/outcome/Failure.h"

namespace Json {
class Value;
}

namespace reticlectl {

/// A JSON document in one line, without its newline, UTF-8 as it is.
[[nodiscard]] std::string toJsonLine(const Json::Value& document);

/// What --json prints for a run that failed before there was a reply.
/// \param problem printable.
[[nodiscard]] std::string errorJson(ExitStatus status, const std::string& problem);

}  // namespace reticlectl
