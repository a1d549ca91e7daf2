#pragma once

namespace sim {

/// What the service may ask of the device ("msg_id").
enum MsgId : int {
    GET_RETICLES = 76,
    SET_ACTIVE_RETICLE = 77,
    ADD_RETICLE = 78,
    UPDATE_RETICLE = 79,
    DELETE_RETICLE = 80,
};

/// The name of a MsgId, as above; null for any other number.
[[nodiscard]] const char* messageName(int msgId);

}  // namespace sim
