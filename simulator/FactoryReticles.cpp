#include "simulator/FactoryReticles.h"

namespace sim {

const ReticleList& factoryReticles() {
    static const ReticleList RETICLES = {
        {0, "Duplex", "factory-duplex.svg", "black", false, true},
    };
    return RETICLES;
}

}  // namespace sim
