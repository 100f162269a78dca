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

/// From a row to corners by surface corner, in pixels from the lower left edges, y up.
class QuadMaker
{
public:
    QuadMaker(CornerTable const& table, CornerImport const& import)
        : m_order(cornerOrder(table, import)), m_import(import)
    {
    }

    Quad of(std::array<double, 8> const& corners) const
    {
        double const middle = m_import.pixelCentres ? 0.5 : 0;
        Quad quad{};
        for (std::size_t i = 0; i < 4; ++i)
        {
            double const y = corners[2 * i + 1] + middle;
            quad[m_order[i]] = {corners[2 * i] + middle, m_import.yUp ? y : m_import.height - y};
        }
        return quad;
    }

private:
    std::array<Corners::SurfaceCorner, 4> m_order;
    CornerImport const& m_import;
};

[[noreturn]] void refuseRow(CornerTable const& table, CornerTable::Row const& row, QString const& cause)
{
    throw KORV_BadFile(__FILE__, __LINE__,
                       table.fileName +
                           QStringLiteral(": line %1: the corners of frame %2 ").arg(row.line).arg(row.frame) + cause,
                       QString());
}

/// Homographies from the corners of the first row, in the order of frames.
class TrackMaker
{
public:
    TrackMaker(CornerTable const& table, CornerImport const& import)
        : m_table(table), m_import(import), m_quads(table, import), m_reference(m_quads.of(table.rows.front().corners))
    {
        if (!isConvexQuad(m_reference))
        {
            refuseRow(table, table.rows.front(),
                      QStringLiteral("cross or bend inward; check --order, or leave the frame out"));
        }
        m_track.frames.push_back(table.rows.front().frame - table.firstFrame);
        Homography const identity;
        m_track.homographies.assign(identity.m.begin(), identity.m.end());
    }

    TrackModel make()
    {
        for (std::size_t i = 1; i < m_table.rows.size(); ++i)
        {
            if (m_import.interpolateGaps)
            {
                fillGap(m_table.rows[i - 1], m_table.rows[i]);
            }
            if (!add(m_table.rows[i].frame, m_table.rows[i].corners))
            {
                refuseRow(m_table, m_table.rows[i],
                          QStringLiteral("are too far from a picture of the first frame's; leave the frame out"));
            }
        }
        return std::move(m_track);
    }

private:
    void fillGap(CornerTable::Row const& before, CornerTable::Row const& after)
    {
        constexpr int MOST_FRAMES = 100'000;
        int const steps = after.frame - before.frame;
        m_filled += steps - 1;
        if (m_filled > MOST_FRAMES)
        {
            refuseRow(m_table, after,
                      QStringLiteral("come after more than %1 frames without any, which is more than can be made; use "
                                     "--gaps hold")
                          .arg(MOST_FRAMES));
        }
        for (int step = 1; step < steps; ++step)
        {
            double const part = static_cast<double>(step) / steps;
            std::array<double, 8> corners{};
            std::transform(before.corners.begin(), before.corners.end(), after.corners.begin(), corners.begin(),
                           [part](double a, double b) { return a + part * (b - a); });
            if (!isConvexQuad(m_quads.of(corners)) || !add(before.frame + step, corners))
            {
                refuseRow(m_table, after,
                          QStringLiteral("can't be reached in straight lines from those of frame %1; use --gaps hold")
                              .arg(before.frame));
            }
        }
    }

    /// Adds the motion from the reference corners to these, its last entry 1 where that entry
    /// isn't small.
    /// @return whether there is one
    bool add(int frame, std::array<double, 8> const& corners)
    {
        Homography h = Homography::betweenQuads(m_reference, m_quads.of(corners));
        if (!isRegular(h, m_import.width, m_import.height))
        {
            return false;
        }
        // What matters is the entry's part in the last coordinate over the picture.
        double const largest = std::max({std::fabs(h.m[6]) * m_import.width, std::fabs(h.m[7]) * m_import.height});
        if (std::fabs(h.m[8]) > 1e-6 * largest)
        {
            double const last = h.m[8];
            std::for_each(h.m.begin(), h.m.end(), [last](double& entry) { entry /= last; });
        }
        m_track.frames.push_back(frame - m_table.firstFrame);
        m_track.homographies.insert(m_track.homographies.end(), h.m.begin(), h.m.end());
        return true;
    }

    CornerTable const& m_table;
    CornerImport const& m_import;
    QuadMaker m_quads;
    Quad m_reference;
    TrackModel m_track;
    int m_filled = 0;
};

LayerModel layerOf(CornerTable const& table, CornerImport const& import)
{
    LayerModel layer;
    layer.name = import.layerName;
    layer.selected = true;
    layer.referenceFrame = table.rows.front().frame - table.firstFrame;
    Quad const quad = QuadMaker(table, import).of(table.rows.front().corners);
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
    layer.tracks.push_back(TrackMaker(table, import).make());
    return layer;
}

}

std::array<Corners::SurfaceCorner, 4> cornerOrder(CornerTable const& table, CornerImport const& import)
{
    constexpr std::array<Corners::SurfaceCorner, 4> USUAL{Corners::UpperLeft, Corners::UpperRight, Corners::LowerRight,
                                                          Corners::LowerLeft};
    return import.order.value_or(table.order.value_or(USUAL));
}

ProjectModel projectFromCorners(CornerTable const& table, CornerImport const& import)
{
    ClipModel clip;
    clip.name = import.clipName;
    clip.width = import.width;
    clip.height = import.height;
    clip.pixelAspect = import.pixelAspect;
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
    QuadMaker const quads(table, import);
    CornerOrientations count;
    for (CornerTable::Row const& row : table.rows)
    {
        Quad const quad = quads.of(row.corners);
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
