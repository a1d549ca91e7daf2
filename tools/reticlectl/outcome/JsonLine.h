#pragma once

#include <string>

#include "reticle-client/Reticle.h"
#include "tools/reticlectl/outcome/Failure.h"

namespace Json {
class Value;
}

namespace reticlectl {

/// A JSON document in one line, without its newline, UTF-8 as it is.
[[nodiscard]] std::string toJsonLine(const Json::Value& document);

/// A reticle with the members that it has in a reply.
[[nodiscard]] Json::Value toJson(const reticle::Reticle& reticle);

/// What --json prints for a run that failed before there was a reply.
/// \param problem printable.
[[nodiscard]] Json::Value errorJson(ExitStatus status, const std::string& problem);

}  // namespace reticlectl
