#include "tools/reticlectl/commands/userColorTemplate.h"

#include <cstddef>

#include "reticle-client/UserColor.h"
#include "tools/reticlectl/outcome/Failure.h"

namespace reticlectl {

std::string userColorTemplate(std::string_view data) {
    const auto color = reticle::userColor(data);
    const std::string quoted = '"' + color.value_or("") + '"';
    std::size_t found = color ? data.find(quoted) : std::string_view::npos;
    if (found == std::string_view::npos) {
        throw Failure(ExitStatus::REFUSED,
                      "the data shows no colour in double quotes that could be the user's: show it "
                      "without --template");
    }
    std::string text;
    while (found != std::string_view::npos) {
        text.append(data.substr(0, found)).append("\"user_color\"");
        data.remove_prefix(found + quoted.size());
        found = data.find(quoted);
    }
    return text.append(data);
}

}  // namespace reticlectl
