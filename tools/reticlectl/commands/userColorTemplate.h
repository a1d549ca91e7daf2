#pragma once

#include <string>
#include <string_view>

namespace reticlectl {

/// `data` as it may have been stored: each value in double quotes that equals the colour that the
/// data shows is "user_color" again, as the service puts the colour in the place of each
/// "user_color". Stored again, it looks the same and follows the user's choice; a part whose own
/// colour happened to be the user's follows it from then on, too.
/// \throws Failure (REFUSED) where the data shows no colour in double quotes.
[[nodiscard]] std::string userColorTemplate(std::string_view data);

}  // namespace reticlectl
