#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "reticle-client/Reticle.h"

namespace reticlectl {

/// How a table is to look. By itself: plain text, as wide as it gets.
struct TableStyle {
    /// The head line and the active reticle's line bold, a swatch before each colour.
    bool hasColors = false;
    /// The terminal's width, which no line is to exceed.
    std::optional<std::size_t> width;
};

/// The reticles as a table with a head line, one line each, in the given order, columns aligned.
/// The index is "-" where the device gave none that a command can take, the colour where the data
/// shows none (see reticle-client/UserColor.h). The size is that of the data as it came, colour put in.
/// An empty list gives one line that says so.
///
/// For a given width long colours and names are shortened with an ellipsis; what still does not fit
/// is left out: sizes, colours, what can be deleted, what is active, and at last the names.
[[nodiscard]] std::string renderTable(const std::vector<reticle::Reticle>& reticles,
                                      const TableStyle& style = {});

}  // namespace reticlectl
