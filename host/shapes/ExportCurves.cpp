// One key of an outline, and what is done with several.

#include "ExportCurves.h"

#include <boost/make_shared.hpp>

#include <algorithm>

namespace Korvane
{

using Sabrel::BezierSpan;

ExportCurveBase::ExportCurveBase(double keyTime, bool isClosed) : time(keyTime), closed(isClosed)
{
}

ExportCurveBase::~ExportCurveBase() = default;

ExportBezierCurve::ExportBezierCurve(double keyTime, bool isClosed, std::vector<BezierSpan> spans)
    : ExportCurveBase(keyTime, isClosed), m_spans(std::move(spans))
{
}

ExportBezierCurve::~ExportBezierCurve() = default;

int ExportBezierCurve::numSpans() const
{
    return static_cast<int>(m_spans.size());
}

BezierSpan const& ExportBezierCurve::operator[](std::size_t index) const
{
    return m_spans.at(index);
}

Mtx_Vector2 ExportBezierCurve::centre() const
{
    Mtx_Vector2 sum;
    for (BezierSpan const& span : m_spans)
    {
        sum.x += span.start.x;
        sum.y += span.start.y;
    }
    auto const count = static_cast<double>(std::max<std::size_t>(m_spans.size(), 1));
    return {sum.x / count, sum.y / count};
}

ExportXSplineCurve::ExportXSplineCurve(double keyTime, bool isClosed, std::vector<Point> points)
    : ExportCurveBase(keyTime, isClosed), m_points(std::move(points))
{
}

ExportXSplineCurve::~ExportXSplineCurve() = default;

int ExportXSplineCurve::numSpans() const
{
    return static_cast<int>(m_points.size());
}

Mtx_Vector2 ExportXSplineCurve::point(int index) const
{
    return m_points.at(static_cast<std::size_t>(index)).position;
}

double ExportXSplineCurve::weight(int index) const
{
    return m_points.at(static_cast<std::size_t>(index)).weight;
}

}

namespace MarloHost
{

namespace
{

using Korvane::ExportBezierCurve;
using Korvane::ExportCurveBase;
using Korvane::ExportXSplineCurve;
using Sabrel::BezierSpan;
using Curve = boost::shared_ptr<ExportCurveBase>;

Curve copyOf(Curve const& curve)
{
    if (auto const* const bezier = dynamic_cast<ExportBezierCurve const*>(curve.get()))
    {
        return boost::make_shared<ExportBezierCurve>(*bezier);
    }
    return boost::make_shared<ExportXSplineCurve>(dynamic_cast<ExportXSplineCurve const&>(*curve));
}

double cross(Mtx_Vector2 const& a, Mtx_Vector2 const& b)
{
    return a.x * b.y - a.y * b.x;
}

Mtx_Vector2 sum(Mtx_Vector2 const& a, Mtx_Vector2 const& b)
{
    return {a.x + b.x, a.y + b.y};
}

// The area left of the curve: half the integral of x dy - y dx, which for a cubic is a
// sum over pairs of its control points.
double areaOf(ExportBezierCurve const& curve)
{
    auto const count = static_cast<std::size_t>(curve.numSpans());
    double area = 0;
    for (std::size_t i = 0; i < count; ++i)
    {
        Mtx_Vector2 const a = curve[i].start;
        Mtx_Vector2 const d = curve[(i + 1) % count].start;
        Mtx_Vector2 const b = sum(a, curve[i].control1);
        Mtx_Vector2 const c = sum(d, curve[i].control2);
        area += (6 * cross(a, b) + 3 * cross(a, c) + cross(a, d) + 3 * cross(b, c) + 3 * cross(b, d) + 6 * cross(c, d));
    }
    return area / 20;
}

double areaOf(ExportXSplineCurve const& curve)
{
    double area = 0;
    for (int i = 0; i < curve.numSpans(); ++i)
    {
        area += cross(curve.point(i), curve.point((i + 1) % curve.numSpans())) / 2;
    }
    return area;
}

Curve turnedAround(ExportBezierCurve const& curve)
{
    auto const count = static_cast<std::size_t>(curve.numSpans());
    std::vector<BezierSpan> spans;
    spans.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        // The span that led to this vertex leaves it now.
        BezierSpan const& span = curve[(2 * count - 1 - i) % count];
        spans.push_back({curve[(count - i) % count].start, span.control2, span.control1});
    }
    return boost::make_shared<ExportBezierCurve>(curve.time, curve.closed, std::move(spans));
}

Curve turnedAround(ExportXSplineCurve const& curve)
{
    std::vector<ExportXSplineCurve::Point> points;
    int const count = curve.numSpans();
    points.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
    {
        int const from = (count - i) % count;
        points.push_back({curve.point(from), curve.weight(from)});
    }
    return boost::make_shared<ExportXSplineCurve>(curve.time, curve.closed, std::move(points));
}

}

Curves copyOf(Curves const& curves)
{
    Curves copies;
    copies.reserve(curves.size());
    for (Curve const& curve : curves)
    {
        copies.push_back(copyOf(curve));
    }
    return copies;
}

double areaOf(ExportCurveBase const& curve)
{
    auto const* const bezier = dynamic_cast<ExportBezierCurve const*>(&curve);
    return bezier ? areaOf(*bezier) : areaOf(dynamic_cast<ExportXSplineCurve const&>(curve));
}

void turnAround(Curves& curves)
{
    for (Curve& curve : curves)
    {
        auto const* const bezier = dynamic_cast<ExportBezierCurve const*>(curve.get());
        curve = bezier ? turnedAround(*bezier) : turnedAround(dynamic_cast<ExportXSplineCurve const&>(*curve));
    }
}

}
