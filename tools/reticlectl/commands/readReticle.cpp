#include "tools/reticlectl/commands/readReticle.h"

#include "reticle-client/UserColor.h"
#include "tools/reticlectl/files/TextFile.h"

namespace reticlectl {

reticle::NewReticle readReticle(const Session& session, const std::string& name,
                                const std::string& file) {
    return {name, readText(file, session.in)};
}

void warnOfFixedColors(const Session& session, const std::vector<reticle::NewReticle>& reticles) {
    for (const reticle::NewReticle& reticle : reticles) {
        if (reticle::takesUserColor(reticle.data)) {
            continue;
        }
        const bool hasBareName = reticle.data.find("user_color") != std::string::npos;
        session.note("warning: \"" + reticle.name +
                     "\" will not show the user's colour: its data " +
                     (hasBareName ? "has user_color without the double quotes around it"
                                  : "has no \"user_color\", double quotes included"));
    }
}

}  // namespace reticlectl
