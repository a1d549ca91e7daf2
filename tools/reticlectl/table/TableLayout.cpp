#include "tools/reticlectl/table/TableLayout.h"

#include <algorithm>

namespace reticlectl {

namespace {

using Columns = std::vector<ColumnWidth>;
using Widths = std::vector<std::optional<std::size_t>>;

std::size_t totalWidth(const Widths& widths, std::size_t gap) {
    std::size_t total = 0;
    for (const auto& width : widths) {
        total += width ? (total > 0 ? gap : 0) + *width : 0;
    }
    return total;
}

/// Leaves out the column of the highest rank. \return false when there is but one.
bool leaveOneOut(Widths& widths, const Columns& columns) {
    std::size_t last = columns.size();
    std::size_t count = 0;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        count += widths[i] ? 1U : 0U;
        if (widths[i] && (last == columns.size() || columns[i].rank > columns[last].rank)) {
            last = i;
        }
    }
    if (count < 2) {
        return false;
    }
    widths[last].reset();
    return true;
}

/// The columns that fit at their smallest, so wide.
Widths smallestThatFit(const Columns& columns, std::size_t gap, std::size_t available) {
    Widths widths;
    for (const ColumnWidth& column : columns) {
        widths.emplace_back(column.smallest);
    }
    while (totalWidth(widths, gap) > available && leaveOneOut(widths, columns)) {
    }
    return widths;
}

}  // namespace

Widths fitColumns(const Columns& columns, std::size_t gap, std::optional<std::size_t> available) {
    if (!available) {
        Widths wanted;
        for (const ColumnWidth& column : columns) {
            wanted.emplace_back(column.wanted);
        }
        return wanted;
    }
    Widths widths = smallestThatFit(columns, gap, *available);
    const std::size_t taken = std::min(totalWidth(widths, gap), *available);
    std::size_t left = *available - taken;
    // Those at the right are the first to be narrow: what room is left goes to the others.
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (widths[i]) {
            const std::size_t given = std::min(left, columns[i].wanted - columns[i].smallest);
            *widths[i] += given;
            left -= given;
        }
    }
    return widths;
}

}  // namespace reticlectl
