#include "simulator/device/Message.h"

namespace sim {

const char* messageName(int msgId) {
    switch (msgId) {
        case GET_RETICLES:
            return "GET_RETICLES";
        case SET_ACTIVE_RETICLE:
            return "SET_ACTIVE_RETICLE";
        case ADD_RETICLE:
            return "ADD_RETICLE";
        case UPDATE_RETICLE:
            return "UPDATE_RETICLE";
        case DELETE_RETICLE:
            return "DELETE_RETICLE";
        default:
            return nullptr;
    }
}

}  // namespace sim
