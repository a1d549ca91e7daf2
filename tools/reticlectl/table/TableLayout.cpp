#include "tools/reticlectl/table/TableLayout.h"

#include <algorithm>

namespace reticlectl {

namespace {

/// How many of the columns fit at their smallest.
std::size_t countFitting(const std::vector<ColumnWidth>& columns, std::size_t gap,
                         std::size_t available) {
    std::size_t count = 0;
    std::size_t total = 0;
    for (const ColumnWidth& column : columns) {
        total += column.smallest + (count > 0 ? gap : 0);
        if (total > available) {
            break;
        }
        ++count;
    }
    return std::max<std::size_t>(count, 1);
}

std::size_t totalWidth(const std::vector<std::size_t>& widths, std::size_t gap) {
    std::size_t total = gap * (widths.size() - 1);
    for (const std::size_t width : widths) {
        total += width;
    }
    return total;
}

void narrow(std::vector<std::size_t>& widths, const std::vector<ColumnWidth>& columns,
            std::size_t excess) {
    for (std::size_t i = widths.size(); i-- > 0 && excess > 0;) {
        const std::size_t spared = std::min(excess, widths[i] - columns[i].smallest);
        widths[i] -= spared;
        excess -= spared;
    }
}

}  // namespace

std::vector<std::size_t> fitColumns(const std::vector<ColumnWidth>& columns, std::size_t gap,
                                    std::optional<std::size_t> available) {
    std::vector<std::size_t> widths;
    const std::size_t count = available ? countFitting(columns, gap, *available) : columns.size();
    for (std::size_t i = 0; i < count; ++i) {
        widths.push_back(columns[i].wanted);
    }
    const std::size_t total = totalWidth(widths, gap);
    if (available && total > *available) {
        narrow(widths, columns, total - *available);
    }
    return widths;
}

}  // namespace reticlectl
