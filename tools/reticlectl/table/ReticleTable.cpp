#include "tools/reticlectl/table/ReticleTable.h"

#include <algorithm>
#include <array>
#include <limits>

#include "reticle-client/UserColor.h"
#include "tools/reticlectl/table/Swatch.h"
#include "tools/reticlectl/table/TableLayout.h"
#include "tools/reticlectl/terminal/DisplayText.h"

namespace reticlectl {

namespace {

enum class Alignment { LEFT, RIGHT };

constexpr std::size_t NEVER_SHORTENED = std::numeric_limits<std::size_t>::max();

struct Column {
    const char* title = "";
    Alignment alignment = Alignment::LEFT;
    /// The highest is left out first where there is no room.
    unsigned rank = 0;
    /// How far its texts may be shortened.
    std::size_t smallest = NEVER_SHORTENED;
    bool hasSwatch = false;
};

constexpr std::size_t COLUMN_COUNT = 6;
constexpr std::size_t NAME_SMALLEST = 8;
constexpr std::size_t COLOR_SMALLEST = 7;
constexpr std::array<Column, COLUMN_COUNT> COLUMNS = {
    {{"INDEX", Alignment::RIGHT, 0},
     {"ACTIVE", Alignment::LEFT, 2},
     {"NAME", Alignment::LEFT, 1, NAME_SMALLEST},
     {"DELETABLE", Alignment::LEFT, 3},
     {"COLOUR", Alignment::LEFT, 4, COLOR_SMALLEST, true},
     {"BYTES", Alignment::RIGHT, 5}}};
constexpr std::string_view GAP = "  ";

struct Row {
    std::array<std::string, COLUMN_COUNT> cells;
    bool isBold = false;
};

using Widths = std::vector<std::optional<std::size_t>>;

Row headRow() {
    Row row;
    std::transform(COLUMNS.begin(), COLUMNS.end(), row.cells.begin(),
                   [](const Column& column) { return column.title; });
    row.isBold = true;
    return row;
}

Row toRow(const reticle::Reticle& reticle) {
    return {{reticle.index ? std::to_string(*reticle.index) : "-", reticle.isActive ? "*" : "",
             printable(reticle.name), reticle.isDeletable ? "yes" : "no",
             printable(reticle::userColor(reticle.data).value_or("-")),
             std::to_string(reticle.data.size())},
            reticle.isActive};
}

/// What stands before a text in a column of swatches: a colour, or room for one.
std::string swatchBefore(const std::string& text) {
    return swatch(text).value_or(std::string(SWATCH_COLUMNS, ' ')) + ' ';
}

std::size_t swatchWidth(const Column& column, const TableStyle& style) {
    return style.hasColors && column.hasSwatch ? SWATCH_COLUMNS + 1 : 0;
}

ColumnWidth widthOf(const std::vector<Row>& rows, std::size_t column, const TableStyle& style) {
    std::size_t width = 0;
    for (const Row& row : rows) {
        width = std::max(width, displayWidth(row.cells[column]));
    }
    const std::size_t swatchColumns = swatchWidth(COLUMNS[column], style);
    return {width + swatchColumns, std::min(width, COLUMNS[column].smallest) + swatchColumns,
            COLUMNS[column].rank};
}

Widths fittingWidths(const std::vector<Row>& rows, const TableStyle& style) {
    std::vector<ColumnWidth> columns;
    for (std::size_t column = 0; column < COLUMN_COUNT; ++column) {
        columns.push_back(widthOf(rows, column, style));
    }
    return fitColumns(columns, GAP.size(), style.width);
}

std::string padded(const std::string& text, std::size_t width, Alignment alignment, bool isBold) {
    const std::string padding(width - displayWidth(text), ' ');
    const std::string shown = isBold ? "\x1B[1m" + text + "\x1B[0m" : text;
    return alignment == Alignment::LEFT ? shown + padding : padding + shown;
}

std::string renderCell(const Row& row, std::size_t column, std::size_t width,
                       const TableStyle& style) {
    const std::string& text = row.cells[column];
    const std::size_t swatchColumns = swatchWidth(COLUMNS[column], style);
    const std::size_t textColumns = width - swatchColumns;
    return (swatchColumns > 0 ? swatchBefore(text) : "") +
           padded(shortened(text, textColumns), textColumns, COLUMNS[column].alignment,
                  style.hasColors && row.isBold);
}

std::string renderRow(const Row& row, const Widths& widths, const TableStyle& style) {
    std::string line;
    for (std::size_t column = 0; column < widths.size(); ++column) {
        if (widths[column]) {
            line += line.empty() ? "" : GAP;
            line += renderCell(row, column, *widths[column], style);
        }
    }
    return line + '\n';
}

}  // namespace

std::string renderTable(const std::vector<reticle::Reticle>& reticles, const TableStyle& style) {
    if (reticles.empty()) {
        return "no reticles: the device's list is empty or could not be read (the service does not "
               "tell "
               "which)\n";
    }
    std::vector<Row> rows = {headRow()};
    std::transform(reticles.begin(), reticles.end(), std::back_inserter(rows), toRow);
    const Widths widths = fittingWidths(rows, style);
    std::string table;
    for (const Row& row : rows) {
        table += renderRow(row, widths, style);
    }
    return table;
}

}  // namespace reticlectl
