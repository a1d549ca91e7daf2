#include "tools/reticlectl/commands/BracketShield.h"

namespace reticlectl {

namespace {

constexpr char SHIELD = '\x1A';

}  // namespace

std::string shieldBrackets(const std::string& argument) {
    const bool needsShield = argument.starts_with('[') || argument.starts_with(SHIELD);
    return needsShield ? SHIELD + argument : argument;
}

std::string unshieldBrackets(const std::string& argument) {
    return argument.starts_with(SHIELD) ? argument.substr(1) : argument;
}

}  // namespace reticlectl
