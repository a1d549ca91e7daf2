#pragma once

#include <map>
#include <string>

#include "processing/Vocabulary.h"

namespace reticled {

/// Action number to action text. Every unit that includes this has a copy of its own, on purpose: a
/// lookup may add to the table, and nobody else's is touched by it.
static std::map<int, std::string> actionNames{
    {RETICLES_GET_ALL, "RETICLES_GET_ALL"},
    {RETICLE_SET_ACTIVE, "RETICLE_SET_ACTIVE"},
    {RETICLES_ADD_OR_UPDATE, "RETICLES_ADD_OR_UPDATE"},
    {RETICLES_DELETE, "RETICLES_DELETE"},
};

}  // namespace reticled
