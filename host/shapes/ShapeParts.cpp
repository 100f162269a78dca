// From the contours of a layer to curves: keyed or baked, in the coordinates that were asked for.

#include "ShapeParts.h"

#include "Host/ZN_ClipInfo.h"
#include "model/Project.h"
#include "Outline.h"
#include "plane/SurfaceMotion.h"
#include "XSplineBezier.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>

namespace MarloHost
{

namespace
{

using namespace Korvane;
using Sabrel::BezierSpan;
using Transforms = std::vector<KORV_ExportHomography>;
using Curve = boost::shared_ptr<ExportCurveBase>;

/// From the numbers of an outline in the plane to a curve.
Curve bezierCurve(double time, bool closed, std::vector<double> const& numbers)
{
    std::size_t const count = numbers.size() / 6;
    std::vector<BezierSpan> spans(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        double const* const vertex = &numbers[i * 6];
        spans[i].start = {vertex[0], vertex[1]};
        if (!closed && i + 1 == count)
        {
            break;
        }
        double const* const next = &numbers[(i + 1) % count * 6];
        spans[i].control1 = {vertex[4], vertex[5]};
        spans[i].control2 = {next[2], next[3]};
    }
    return boost::make_shared<ExportBezierCurve>(time, closed, std::move(spans));
}

Curve xsplineCurve(double time, bool closed, std::vector<double> const& numbers)
{
    std::vector<ExportXSplineCurve::Point> points;
    points.reserve(numbers.size() / 3);
    for (std::size_t i = 0; i + 3 <= numbers.size(); i += 3)
    {
        points.push_back({{numbers[i], numbers[i + 1]}, numbers[i + 2]});
    }
    return boost::make_shared<ExportXSplineCurve>(time, closed, std::move(points));
}

// The feather of all keys at `scale` times its distance from the mask; weights stay.
void scaleFeather(std::vector<ContourKeyModel>& keys, double scale, bool xspline)
{
    for (ContourKeyModel& key : keys)
    {
        for (std::size_t i = 0; i < key.feather.size(); ++i)
        {
            if (!xspline || i % 3 != 2)
            {
                key.feather[i] = key.points[i] + scale * (key.feather[i] - key.points[i]);
            }
        }
    }
}

bool isFinite(Homography const& map)
{
    return std::all_of(map.m.begin(), map.m.end(), [](double entry) { return std::isfinite(entry); });
}

/// Makes the parts of one layer: its motion is evaluated once for each frame.
class ShapeBuilder
{
public:
    ShapeBuilder(KORV_ProjectManager const& project, KORV_Layer const& layer, ShapeRequest const& request)
        : m_layer(layer.data()),
          m_clip(m_layer.clip->info()),
          m_request(request),
          m_motionApart(false),
          m_toOutput(toOutput())
    {
        SurfaceMotion const motion = motionOfContours(project, layer, request.view);
        for (int frame = request.firstFrame; frame <= request.lastFrame; ++frame)
        {
            m_motion.push_back(motion.at(frame));
        }
        // Homographies that aren't finite get lost in an export, and one alone says nothing.
        m_motionApart = has(ShapeMotionApart) && std::count_if(m_motion.begin(), m_motion.end(), isFinite) > 1;
        makeTransforms();
    }

    std::vector<ShapePart> parts() const;

private:
    bool has(unsigned int flag) const
    {
        return (m_request.flags & flag) != 0;
    }

    double lines() const
    {
        return m_clip.bIsInterlaced() ? 2 : 1;
    }

    double shownNumber(int frame) const
    {
        return (static_cast<double>(frame) + m_clip.baseClipOffset()) / lines();
    }

    bool keepsXSplines() const
    {
        bool const turns = has(ShapeAsBezier | ShapeXSplinesToBezier);
        return !turns || has(ShapeKeepsType);
    }

    // From pixels of the raster, y up, to the coordinates of curves and transforms.
    Homography toOutput() const
    {
        double const width = m_clip.width();
        double const height = m_clip.height() * lines();
        Homography const fullFrame{{1, 0, 0, 0, lines(), 0, 0, 0, 1}};
        Homography const flip{{1, 0, 0, 0, -1, height, 0, 0, 1}};
        Homography const unit{{1 / width, 0, 0, 0, 1 / height, 0, 0, 0, 1}};
        Homography map = fullFrame;
        map = has(ShapeYDown) ? flip * map : map;
        return has(ShapeInPixels) ? map : unit * map;
    }

    void makeTransforms()
    {
        auto transforms = std::make_shared<Transforms>();
        Homography const there{{1, 0, m_request.offset.x(), 0, 1, m_request.offset.y(), 0, 0, 1}};
        Homography const out = there * m_toOutput;
        Homography const back = out.inverse();
        for (std::size_t i = 0; has(ShapeMotionApart) && i < m_motion.size(); ++i)
        {
            Homography const map = m_motionApart ? out * m_motion[i] * back : Homography();
            KORV_ExportHomography entry;
            for (std::size_t j = 0; j < 9; ++j)
            {
                entry.m[j] = map.m[j] / map.m[8] * KORV_NumericOptimiser::s_matrixScale;
            }
            entry.m[8] = KORV_NumericOptimiser::s_matrixScale;
            entry.time = shownNumber(m_request.firstFrame + static_cast<int>(i));
            transforms->push_back(entry);
        }
        m_transforms = std::move(transforms);
    }

    std::vector<int> keyFrames(std::vector<ContourKeyModel> const& keys) const
    {
        std::vector<int> frames;
        for (int frame = m_request.firstFrame; !m_motionApart && frame <= m_request.lastFrame; ++frame)
        {
            frames.push_back(frame);
        }
        if (m_motionApart)
        {
            frames.push_back(m_request.firstFrame);
            for (ContourKeyModel const& key : keys)
            {
                if (key.frame > m_request.firstFrame && key.frame < m_request.lastFrame)
                {
                    frames.push_back(key.frame);
                }
            }
            frames.push_back(m_request.lastFrame);
        }
        return frames;
    }

    // The keys of a contour as they lie in the plane, as Bezier curves if they become such.
    std::vector<ContourKeyModel> keysInPlane(ContourModel const& contour) const
    {
        std::vector<ContourKeyModel> keys = contour.keys;
        for (ContourKeyModel& key : keys)
        {
            if (!has(ShapeWithBlur))
            {
                key.feather.clear();
            }
        }
        scaleFeather(keys, m_request.featherScale, contour.xspline);
        if (!contour.xspline || keepsXSplines())
        {
            return keys;
        }
        PlaneView seen{m_request.firstFrame, m_motion};
        Homography const fullFrame{{1, 0, 0, 0, lines(), 0, 0, 0, 1}};
        for (Homography& map : seen.maps)
        {
            map = fullFrame * map;
        }
        return m_motionApart ? bezierOfXSpline(keys, contour.closed, seen, X_SPLINE_TOLERANCE)
                             : bakedBezierOfXSpline(keys, contour.closed, seen, X_SPLINE_TOLERANCE);
    }

    Curves curves(ContourModel const& contour, std::vector<ContourKeyModel> const& keys, std::vector<int> const& frames,
                  Edge edge) const
    {
        bool const xspline = contour.xspline && keepsXSplines();
        Curves made;
        made.reserve(static_cast<int>(frames.size()));
        std::vector<double> numbers;
        for (int const frame : frames)
        {
            edgeAt(keys, edge, frame, numbers);
            carryEdge(xspline, m_motionApart ? m_toOutput : m_toOutput * motionAt(frame), numbers);
            made.push_back(xspline ? xsplineCurve(shownNumber(frame), contour.closed, numbers)
                                   : bezierCurve(shownNumber(frame), contour.closed, numbers));
        }
        return made;
    }

    Homography const& motionAt(int frame) const
    {
        return m_motion[static_cast<std::size_t>(frame - m_request.firstFrame)];
    }

    // -1 where what is counter-clockwise in the curves is clockwise on screen: y is
    // measured down, or the plane is seen from behind.
    double facing(int frame) const
    {
        double const down = has(ShapeYDown) ? -1 : 1;
        if (!m_motionApart)
        {
            return down;
        }
        std::array<double, 9> const& m = motionAt(frame).m;
        double const det = m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) +
                           m[2] * (m[3] * m[7] - m[4] * m[6]);
        return det < 0 ? -down : down;
    }

    KORV_Layer::Data const& m_layer;
    ZN_BaseClipInfo const& m_clip;
    ShapeRequest m_request;
    bool m_motionApart;
    Homography m_toOutput;

    /// From the plane to the raster, for each frame of the range.
    std::vector<Homography> m_motion;
    std::shared_ptr<Transforms const> m_transforms;
};

std::vector<ShapePart> ShapeBuilder::parts() const
{
    std::vector<ShapePart> made;
    for (ContourModel const& contour : m_layer.model->contours)
    {
        if (!contour.active)
        {
            continue;
        }
        std::vector<ContourKeyModel> const keys = keysInPlane(contour);
        std::vector<int> const frames = keyFrames(keys);
        ShapePart part;
        part.name = contour.name.toStdString();
        part.mask = curves(contour, keys, frames, Edge::Mask);
        if (has(ShapeWithBlur))
        {
            part.blur = curves(contour, keys, frames, Edge::Feather);
        }
        part.transform = m_transforms;
        for (int const frame : frames)
        {
            part.facing.push_back(facing(frame));
        }
        made.push_back(std::move(part));
    }
    return made;
}

}

std::vector<ShapePart> makeShapeParts(KORV_ProjectManager const& project, KORV_Layer const& layer,
                                      ShapeRequest const& request)
{
    return ShapeBuilder(project, layer, request).parts();
}

}
