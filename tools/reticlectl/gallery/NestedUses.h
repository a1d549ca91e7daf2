#pragma once

#include <string>

namespace reticlectl {

/// Whether a drawing repeats parts (`use`) that themselves repeat others, or declares entities: a few
/// bytes can then stand for more shapes than a browser ever finishes drawing.
/// \param svg any text; one that is not well-formed, which no browser draws, nests nothing.
[[nodiscard]] bool nestsUses(const std::string& svg);

}  // namespace reticlectl
