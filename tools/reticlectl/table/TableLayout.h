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
};

/// How wide each column of a table becomes. Where the table is too wide, columns are narrowed,
/// those at the right first; where that is not enough, columns are left out from the right, so that
/// fewer widths may come back than were given, but always the first.
/// \param gap what stands between two columns.
/// \param available the width to fit; nothing for any.
[[nodiscard]] std::vector<std::size_t> fitColumns(const std::vector<ColumnWidth>& columns,
                                                  std::size_t gap,
                                                  std::optional<std::size_t> available);

}  // namespace reticlectl
