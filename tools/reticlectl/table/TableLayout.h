#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace reticlectl {

/// The columns that a table's column would like to take, and how few will do.
struct ColumnWidth {
    std::size_t wanted;
    /// At most `wanted`; equal where the content is not to be shortened.
    std::size_t smallest;
    /// The column of the highest rank is left out first where there is no room for all.
    unsigned rank;
};

/// How wide each column of a table becomes; nothing for one that is left out. Where the table is too
/// wide, columns are narrowed, those at the right first; where that is not enough, columns are left
/// out by their rank, but never all.
/// \param gap what stands between two columns.
/// \param available the width to fit; nothing for any.
[[nodiscard]] std::vector<std::optional<std::size_t>> fitColumns(
    const std::vector<ColumnWidth>& columns, std::size_t gap, std::optional<std::size_t> available);

}  // namespace reticlectl
