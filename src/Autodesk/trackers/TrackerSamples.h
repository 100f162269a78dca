#pragma once
// The samples of a surface's points as Flame's tracker and stabilizer setups hold them.

#include "Host/ExporterHelper.h"

namespace Export
{

/// Samples of the surface points, one for each frame from the first exported one on. Pixels of
/// the full frame, y up.
class TrackerSamples
{
public:
    /// @param helper whose points are up to date
    explicit TrackerSamples(Korvane::TrackingExporterHelper const& helper);

    /// 0 when there is nothing to export.
    int count() const
    {
        return m_count;
    }

    /// The shown number of a sample's frame; two fields share one, the second has half a frame
    /// more. Clips without an offset count from 1 in these programs.
    float frame(int sample) const;

    /// @param point a TrackingExporterTypes::SurfaceCorner, or 4 for the centre
    TXI::Pos2 at(int sample, int point) const
    {
        TXI::Pos2 const& inRaster = m_points[sample][point];
        return {inRaster.x, m_verticalScale * inRaster.y};
    }

    /// The sample of a host frame, or the nearest one that there is; 0 without samples.
    int nearest(int hostFrame) const;

private:
    boost::shared_array<TXI::Pos2[5]> m_points;
    int m_count;
    int m_first;
    int m_offset;
    bool m_interlaced;
    double m_verticalScale;
};

}
