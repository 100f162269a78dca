#pragma once
// Tables of corner positions, as detectors, annotators and other trackers write
// them, and the project that such a table makes.

#include "Host/HostApi.h"
#include "Host/TrackingExporter.h"
#include "marlohost/ProjectModel.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <array>
#include <optional>
#include <utility>
#include <vector>

namespace MarloHost
{

/// The four corners of a surface over time, as a table lists them.
struct MARLO_HOST_API CornerTable
{
    struct Row
    {
        /// The number of the table, or the place of the row, from 1, where it has none.
        int frame = 0;

        /// x and y of four corners, in the order and the axes of the table.
        std::array<double, 8> corners{};

        /// Place in the file, from 1.
        int line = 0;
    };

    /// Stands in error texts.
    QString fileName;

    /// The rows that hold corners, ascending by frame; never empty once read.
    std::vector<Row> rows;

    /// First and last frame of the table, rows without corners included.
    int firstFrame = 0;
    int lastFrame = 0;

    /// Whether the rows say their frame, as a number or in a file name.
    bool hasFrameNumbers = false;

    /// Which corner each pair of a row is, where the header says so.
    std::optional<std::array<Korvane::TrackingExporterTypes::SurfaceCorner, 4>> order{};

    /// Names of columns that the header names beside frame and corners.
    QStringList ignoredColumns;

    /// Numbers the frames anew, from this one on.
    /// @throws KORV_BadFile when the last is beyond what a project takes
    void startAt(int frame);

    /// The frames from first to last that have no corners, as ranges with both ends
    /// included.
    std::vector<std::pair<int, int>> missingFrames() const;
};

/// Reads a table of corners.
///
/// A line holds eight numbers, split by blanks, tabs, commas or semicolons. In front
/// of them may stand a frame number, or a file name whose last digits are one; then it
/// does so in all lines. A first line without any number is a header. Where it names the
/// corners (ulx, top_left_x, x1 and their like), columns may stand in any place and others
/// beside them. Empty lines and what follows a "#" are skipped. A row of zeros, of empty cells
/// or with the word NaN, says that the frame has no corners. Anything else is an error: a table
/// that is read by guess puts the surface into the wrong place. So are time codes, numbers that
/// look normalised, and files that are something else by their first lines.
///
/// @param fileName stands in error texts
/// @throws KORV_BadFile with one line for the user: file, line number, what is wrong
MARLO_HOST_API CornerTable readCornerTable(QByteArray const& text, QString const& fileName);

/// Reads a table of corners from disk, or for "-" from standard input.
/// @throws KORV_BadFile also when the file can't be opened or is too large
MARLO_HOST_API CornerTable readCornerTableFile(QString const& path);

/// What a table doesn't say about itself.
struct MARLO_HOST_API CornerImport
{
    using Corners = Korvane::TrackingExporterTypes;

    QString clipName;

    /// Raster of the clip in pixels.
    int width = 0;
    int height = 0;

    /// Width of a pixel divided by its height.
    double pixelAspect = 1.0;

    /// Frames per second.
    double frameRate = 24.0;
    QString layerName = QStringLiteral("Layer1");

    /// Whether the y of the table runs up from the bottom edge; else down from the top.
    bool yUp = false;

    /// Whether whole numbers are the middles of pixels, so that the corner pixel's middle is
    /// (0, 0); else they are the edges, and it is (0.5, 0.5).
    bool pixelCentres = false;

    /// Which corner each pair of a row is; unset takes what the header says, or upper left,
    /// upper right, lower right, lower left.
    std::optional<std::array<Corners::SurfaceCorner, 4>> order{};

    /// Whether corners of frames between two rows are made, on the straight line from one to the
    /// other; else these frames have no tracking data.
    bool interpolateGaps = false;
};

/// Which corner each pair of a row is, in the end.
MARLO_HOST_API std::array<Korvane::TrackingExporterTypes::SurfaceCorner, 4> cornerOrder(CornerTable const& table,
                                                                                        CornerImport const& import);

/// The project of a table: a clip whose shown frame numbers are those of the table,
/// and a layer, current and selected, that is tracked in every frame with corners.
/// The surface is that of the first such frame; the layer ends where the corners do.
///
/// @throws KORV_BadFile when the motion to a row's corners is singular, or so many frames have to
///         be made that somebody mistook the numbers
MARLO_HOST_API ProjectModel projectFromCorners(CornerTable const& table, CornerImport const& import);

/// How the corners lie in the picture, counted over the rows of a table.
struct MARLO_HOST_API CornerOrientations
{
    /// Upper left, upper right, lower right, lower left run clockwise as seen on screen.
    int clockwise = 0;

    /// They run the other way round: the surface is seen from behind, or axes or order
    /// were mistaken.
    int counterClockwise = 0;

    /// The outline crosses itself or caves in, which no picture of a rectangle does.
    int notConvex = 0;
};

MARLO_HOST_API CornerOrientations cornerOrientations(CornerTable const& table, CornerImport const& import);

}
