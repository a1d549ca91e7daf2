#include "simulator/device/FactoryReticles.h"

namespace sim {

namespace {

// Those of an illuminated sight; the green and amber that have names are too dark or too pale.
constexpr const char* GREEN = "#00c853";
constexpr const char* AMBER = "#ffb000";

}  // namespace

const ReticleList& factoryReticles() {
    static const ReticleList RETICLES = {
        {0, "Duplex", "factory-duplex.svg", "black", false, true},
        {1, "Mil-Dot", "factory-mil-dot.svg", "red", false, false},
        {2, "MOA Grid", "factory-moa-grid.svg", GREEN, false, false},
        {3, "BDC 7.62 mm", "factory-bdc-ladder.svg", AMBER, false, false},
        {4, "Circle-Dot", "factory-circle-dot.svg", "red", false, false},
        {5, "German No. 4", "factory-german-4.svg", "black", false, false},
        {6, "Mil Tree", "factory-mil-tree.svg", GREEN, false, false},
        {7, "Chevron", "factory-chevron.svg", "red", true, false},
    };
    return RETICLES;
}

}  // namespace sim
