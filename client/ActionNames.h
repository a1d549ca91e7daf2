#pragma once

#include <string_view>

namespace reticle {

/// The texts of "action" that the service knows; it compares them byte for byte.
constexpr std::string_view LIST_ACTION = "RETICLES_GET_ALL";
constexpr std::string_view ACTIVATE_ACTION = "RETICLE_SET_ACTIVE";
constexpr std::string_view ADD_OR_UPDATE_ACTION = "RETICLES_ADD_OR_UPDATE";
constexpr std::string_view DELETE_ACTION = "RETICLES_DELETE";

}  // namespace reticle
