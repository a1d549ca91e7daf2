#include "tools/reticlectl/ReticleTable.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "client/UserColor.h"
#include "tools/reticlectl/DisplayText.h"

namespace reticlectl {

namespace {

enum class Alignment { LEFT, RIGHT };

struct Column {
    const char* title;
    Alignment alignment;
};

constexpr std::size_t COLUMN_COUNT = 6;
constexpr std::array<Column, COLUMN_COUNT> COLUMNS = {{{"INDEX", Alignment::RIGHT},
                                                       {"ACTIVE", Alignment::LEFT},
                                                       {"NAME", Alignment::LEFT},
                                                       {"DELETABLE", Alignment::LEFT},
                                                       {"COLOUR", Alignment::LEFT},
                                                       {"BYTES", Alignment::RIGHT}}};
constexpr const char* GAP = "  ";

using Row = std::array<std::string, COLUMN_COUNT>;

Row headRow() {
    Row row;
    std::transform(COLUMNS.begin(), COLUMNS.end(), row.begin(),
                   [](const Column& column) { return column.title; });
    return row;
}

Row toRow(const reticle::Reticle& reticle) {
    return {reticle.index ? std::to_string(*reticle.index) : "-",
            reticle.isActive ? "*" : "",
            printable(reticle.name),
            reticle.isDeletable ? "yes" : "no",
            printable(reticle::userColor(reticle.data).value_or("-")),
            std::to_string(reticle.data.size())};
}

std::size_t widthOf(const std::vector<Row>& rows, std::size_t column) {
    std::size_t width = 0;
    for (const Row& row : rows) {
        width = std::max(width, displayWidth(row[column]));
    }
    return width;
}

std::string padded(const std::string& text, std::size_t width, Alignment alignment) {
    const std::string padding(width - displayWidth(text), ' ');
    return alignment == Alignment::LEFT ? text + padding : padding + text;
}

std::string renderRow(const Row& row, const std::array<std::size_t, COLUMN_COUNT>& widths) {
    std::string line;
    for (std::size_t column = 0; column < COLUMN_COUNT; ++column) {
        line += line.empty() ? "" : GAP;
        line += padded(row[column], widths[column], COLUMNS[column].alignment);
    }
    return line + '\n';
}

}  // namespace

std::string renderTable(const std::vector<reticle::Reticle>& reticles) {
    if (reticles.empty()) {
        return "no reticles: the device's list is empty or could not be read (the service does not "
               "tell "
               "which)\n";
    }
    std::vector<Row> rows = {headRow()};
    std::transform(reticles.begin(), reticles.end(), std::back_inserter(rows), toRow);
    std::array<std::size_t, COLUMN_COUNT> widths{};
    for (std::size_t column = 0; column < COLUMN_COUNT; ++column) {
        widths[column] = widthOf(rows, column);
    }
    std::string table;
    for (const Row& row : rows) {
        table += renderRow(row, widths);
    }
    return table;
}

}  // namespace reticlectl
