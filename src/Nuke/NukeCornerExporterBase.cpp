#include "Nuke/NukeCornerExporterBase.h"

#include "Writing/Frames.h"

namespace Export
{

namespace
{

using Corners = Korvane::TrackingExporterTypes;

void addPoint(NukePointCurve& curves, float frame, double x, double y)
{
    curves.first.addKeyframe(frame, static_cast<float>(x));
    curves.second.addKeyframe(frame, static_cast<float>(y));
}

}

NukeCornerExporterBase::NukeCornerExporterBase() = default;
NukeCornerExporterBase::~NukeCornerExporterBase() = default;

QString NukeCornerExporterBase::exportSingleView(QString const& name, QVector<NukePointCurve> const& curves) const
{
    CornerPin pin;
    if (curves.size() == 4)
    {
        pin = {curves[0], curves[1], curves[2], curves[3]};
    }
    return exportSingleView(name, pin);
}

QVector<NukePointCurve> NukeCornerExporterBase::createCurves() const
{
    CornerPin const pin = createCornerPin();
    return {pin.to1, pin.to2, pin.to3, pin.to4};
}

NukeCornerExporterBase::CornerPin NukeCornerExporterBase::createCornerPin() const
{
    CornerPin pin;
    boost::shared_array<TXI::Pos2[5]> const points = helper().surfacePoints();
    int const frames = points ? helper().numFrames() : 0;
    if (frames == 0)
    {
        return pin;
    }
    double const step = static_cast<double>(helper().frameStep());
    double const verticalScale = static_cast<double>(helper().verticalScale());

    // The host counts row by row, Nuke goes around.
    std::pair<NukePointCurve*, Corners::SurfaceCorner> const corners[] = {{&pin.to1, Corners::LowerLeft},
                                                                          {&pin.to2, Corners::LowerRight},
                                                                          {&pin.to3, Corners::UpperRight},
                                                                          {&pin.to4, Corners::UpperLeft}};
    for (auto const& [curves, corner] : corners)
    {
        curves->first.reserve(frames);
        curves->second.reserve(frames);
        forEachFrame(helper(),
                     [&, corner = corner, to = curves](int row, int frame)
                     {
                         TXI::Pos2 const& p = points[row][corner];
                         double const base = points[0][corner].y;
                         addPoint(*to, static_cast<float>(frame * step + helper().baseClipOffset()), p.x,
                                  (p.y - base) * verticalScale + base);
                     });
    }
    return pin;
}

}
