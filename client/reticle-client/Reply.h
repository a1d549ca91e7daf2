#pragma once

#include <optional>
#include <string>
#include <vector>

#include "reticle-client/Reticle.h"

namespace reticle {

/// What the service sent back for one request.
struct Reply {
    /// The name of the device's last answer, "OK" or the reason of a refusal. Empty for a code that
    /// the service has no name for; absent when the request left the device nothing to judge.
    std::optional<std::string> result;
    /// The list after the command, in the device's order. Empty when the device holds no reticle,
    /// and also when the service could not read the list: the service sends the same for both.
    std::vector<Reticle> reticles;
    /// The reply's JSON text as it came, without its frame.
    std::string json;

    /// Whether the device said no.
    [[nodiscard]] bool isRefused() const;

    /// Reads the JSON text of a reply. Any thread.
    /// \throws MalformedReply when the text is not JSON, or not what the service sends, or holds
    ///         more than a million values, which would take a hundred times the memory of the text.
    [[nodiscard]] static Reply parse(std::string json);
};

/// What a reply's "result" means and what can be done about it, as a phrase for a person.
/// Any thread.
/// \param result any text: one that this library does not know has a phrase as well.
[[nodiscard]] std::string resultMeaning(const std::string& result);

}  // namespace reticle
