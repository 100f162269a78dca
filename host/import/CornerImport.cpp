// From a table of corners to a project.

#include "Host/KORV_Exception.h"
#include "marlohost/CornerTable.h"
#include "plane/Homography.h"

#include <algorithm>
#include <cmath>

namespace MarloHost
{

namespace
{

using Corners = Korvane::TrackingExporterTypes;

/// The corners of a row by surface corner, y up.
Quad quadOf(CornerTable::Row const& row, CornerImport const& import)
{
    Quad quad{};
    for (std::size_t i = 0; i < 4; ++i)
    {
        double const y = row.corners[2 * i + 1];
        quad[import.order[i]] = {row.corners[2 * i], import.yUp ? y : import.height - y};
    }
    return quad;
}

/// The motion from the reference corners to a row's, its last entry 1 where that
/// entry isn't small.
Homography motionTo(CornerTable::Row const& row, Quad const& reference, CornerTable const& table,
                    CornerImport const& import)
{
    Homography h = Homography::betweenQuads(reference, quadOf(row, import));
    if (!isRegular(h, import.width, import.height))
    {
        throw KORV_BadFile(__FILE__, __LINE__,
                           table.fileName + QStringLiteral(": line %1: the corners of frame %2 are too far from a "
                                                           "picture of the first frame's; leave the frame out")
                                                .arg(row.line)
                                                .arg(row.frame),
                           QString());
    }
    // What matters is the entry's part in the last coordinate over the picture.
    double const largest = std::max({std::fabs(h.m[6]) * import.width, std::fabs(h.m[7]) * import.height});
    if (std::fabs(h.m[8]) > 1e-6 * largest)
    {
        double const last = h.m[8];
        std::for_each(h.m.begin(), h.m.end(), [last](double& entry) { entry /= last; });
    }
    return h;
}

TrackModel trackOf(CornerTable const& table, CornerImport const& import)
{
    Quad const reference = quadOf(table.rows.front(), import);
    if (!isConvexQuad(reference))
    {
        throw KORV_BadFile(__FILE__, __LINE__,
                           table.fileName + QStringLiteral(": line %1: the corners of frame %2 cross or bend inward; "
                                                           "check --order, or leave the frame out")
                                                .arg(table.rows.front().line)
                                                .arg(table.rows.front().frame),
                           QString());
    }
    TrackModel track;
    for (CornerTable::Row const& row : table.rows)
    {
        bool const isReference = &row == &table.rows.front();
        Homography const h = isReference ? Homography() : motionTo(row, reference, table, import);
        track.frames.push_back(row.frame - table.firstFrame);
        track.homographies.insert(track.homographies.end(), h.m.begin(), h.m.end());
    }
    return track;
}

LayerModel layerOf(CornerTable const& table, CornerImport const& import)
{
    LayerModel layer;
    layer.name = import.layerName;
    layer.selected = true;
    layer.referenceFrame = table.rows.front().frame - table.firstFrame;
    Quad const quad = quadOf(table.rows.front(), import);
    for (std::size_t corner = 0; corner < 4; ++corner)
    {
        layer.corners[2 * corner] = quad[corner].x;
        layer.corners[2 * corner + 1] = quad[corner].y;
    }
    if (table.rows.front().frame != table.firstFrame)
    {
        layer.inPoint = layer.referenceFrame;
    }
    if (table.rows.back().frame != table.lastFrame)
    {
        layer.outPoint = table.rows.back().frame - table.firstFrame;
    }
    layer.tracks.push_back(trackOf(table, import));
    return layer;
}

}

ProjectModel projectFromCorners(CornerTable const& table, CornerImport const& import)
{
    ClipModel clip;
    clip.name = import.clipName;
    clip.width = import.width;
    clip.height = import.height;
    clip.frameCount = table.lastFrame - table.firstFrame + 1;
    clip.frameOffset = table.firstFrame;

    ProjectModel project;
    project.frameRate = import.frameRate;
    project.clips.push_back(clip);
    project.layers.push_back(layerOf(table, import));
    project.currentLayer = import.layerName;
    project.currentFrame = project.layers.front().referenceFrame;
    return project;
}

CornerOrientations cornerOrientations(CornerTable const& table, CornerImport const& import)
{
    static constexpr std::size_t OUTLINE[] = {Corners::UpperLeft, Corners::UpperRight, Corners::LowerRight,
                                              Corners::LowerLeft};
    CornerOrientations count;
    for (CornerTable::Row const& row : table.rows)
    {
        Quad const quad = quadOf(row, import);
        int leftTurns = 0;
        for (std::size_t i = 0; i < 4; ++i)
        {
            TXI::Pos2 const& a = quad[OUTLINE[i]];
            TXI::Pos2 const& b = quad[OUTLINE[(i + 1) % 4]];
            TXI::Pos2 const& c = quad[OUTLINE[(i + 2) % 4]];
            leftTurns += (b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x) > 0 ? 1 : 0;
        }
        int& kind = leftTurns == 0 ? count.clockwise : leftTurns == 4 ? count.counterClockwise : count.notConvex;
        ++kind;
    }
    return count;
}

}
