#pragma once
// The lines of a corner table in cells, and what its header says of them.

#include "marlohost/CornerTable.h"
#include "TextLines.h"

namespace MarloHost
{

/// What keeps the cells of a line apart: a character alone, or 0 for blanks, tabs, commas and
/// semicolons in any mixture.
using CellSeparator = char;
constexpr CellSeparator ANY_SEPARATOR = 0;

/// Splits a line into cells, without the blanks around them and the quotes about them; cells
/// between separators may be empty. What follows a "#" that starts a cell of blanks, or a line,
/// is left out.
/// @param cells gets the cells
void splitCells(Token line, CellSeparator separator, std::vector<Token>& cells);

/// The columns of a table whose header names frame and corners; none for other tables.
struct CornerColumns
{
    using Order = std::array<Korvane::TrackingExporterTypes::SurfaceCorner, 4>;

    CellSeparator separator = ANY_SEPARATOR;

    /// How many there are.
    std::size_t count = 0;
    std::optional<std::size_t> frame;

    /// x and y of four corners, from left to right or as they are numbered.
    std::array<std::size_t, 8> corners{};

    /// Which corners these are, where the names say so.
    std::optional<Order> order;

    /// Names of the other columns.
    QStringList ignored;

    bool areNamed() const
    {
        return count > 0;
    }
};

/// Finds frame and corners by their names: "frame" or "file", and "ulx" or "top_left_x" and their
/// like, or "x1" to "y4".
/// @return empty when a corner isn't named, or named twice
std::optional<CornerColumns> columnsOfHeader(Token line);

/// What a file is that holds no table, and the way out; empty for all others.
QString foreignKindOf(QByteArray const& bytes);

}
