#pragma once
// Contours, what is asked of them, and a reader of outline texts.

#include "ProjectBuilder.h"

#include "Host/Contour.h"
#include "Host/ExportedShape.h"
#include "Host/KORV_Exception.h"

#include <gtest/gtest.h>

namespace ShapeTest
{

using Korvane::ExportedShape;

inline MarloHost::ContourModel bezier(std::vector<MarloHost::ContourKeyModel> keys)
{
    MarloHost::ContourModel contour;
    contour.name = QStringLiteral("outline");
    contour.keys = std::move(keys);
    return contour;
}

inline MarloHost::ContourModel xspline(std::vector<MarloHost::ContourKeyModel> keys)
{
    MarloHost::ContourModel contour = bezier(std::move(keys));
    contour.xspline = true;
    return contour;
}

inline Anm::Context contextAt(int frame)
{
    return Anm::Context(Anm::Time::fromInt(frame), Anm::View::defaultView());
}

/// The shape of the current layer in the default view.
inline ExportedShape shapeOf(ProjectBuilder const& builder, int first, int last, unsigned int flags, double scale = 1,
                             QPointF const& offset = {})
{
    auto const project = builder.make();
    return ExportedShape(*project, first, last, *project->currentLayer(), Anm::View::defaultView(), flags, scale,
                         offset, true);
}

inline Korvane::ExportBezierCurve const& bezierAt(ExportedShape::Curves const& curves, int key)
{
    return dynamic_cast<Korvane::ExportBezierCurve const&>(*curves.at(key));
}

inline Mtx_Vector2 sum(Mtx_Vector2 const& a, Mtx_Vector2 const& b)
{
    return {a.x + b.x, a.y + b.y};
}

inline Mtx_Vector2 through(std::array<double, 9> const& m, Mtx_Vector2 const& p, QPointF const& offset = {})
{
    double const x = p.x + offset.x();
    double const y = p.y + offset.y();
    double const w = m[6] * x + m[7] * y + m[8];
    return {(m[0] * x + m[1] * y + m[2]) / w - offset.x(), (m[3] * x + m[4] * y + m[5]) / w - offset.y()};
}

inline testing::AssertionResult isNear(Mtx_Vector2 const& found, Mtx_Vector2 const& expected, double tolerance)
{
    bool const near = std::fabs(found.x - expected.x) <= tolerance && std::fabs(found.y - expected.y) <= tolerance;
    return (near ? testing::AssertionSuccess() : testing::AssertionFailure())
           << "(" << found.x << ", " << found.y << ") where (" << expected.x << ", " << expected.y << ") was expected";
}

#define EXPECT_POINT(found, ...) EXPECT_TRUE(isNear(found, __VA_ARGS__))

/// An outline text, taken apart.
struct Outline
{
    bool xspline = false;
    bool closed = false;

    /// The numbers of the mask, then those of the feather if there is one.
    std::vector<std::vector<double>> edges;
};

inline Outline parseOutline(QString const& text)
{
    Outline outline;
    for (QString const& edge : text.split('/'))
    {
        std::vector<double> numbers;
        for (QString const& vertex : edge.split(';'))
        {
            if (vertex == "xspline" || vertex == "bezier" || vertex == "closed" || vertex == "open")
            {
                outline.xspline |= vertex == "xspline";
                outline.closed |= vertex == "closed";
                continue;
            }
            QStringList const words = vertex.split(',');
            EXPECT_EQ(words.size(), outline.xspline ? 3 : 6) << text.toStdString();
            for (QString const& word : words)
            {
                bool isNumber = false;
                numbers.push_back(word.toDouble(&isNumber));
                EXPECT_TRUE(isNumber) << text.toStdString();
            }
        }
        outline.edges.push_back(numbers);
    }
    return outline;
}

/// Carries vertices and tips of handles, which are in 0 to 1 of the picture.
inline void carry(Outline& outline, Korvane::Contour::HomographyWithCamera const& record, bool back)
{
    auto const& h = record.homography.m;
    std::array<double, 9> const inverse{
        h[4] * h[8] - h[5] * h[7], h[2] * h[7] - h[1] * h[8], h[1] * h[5] - h[2] * h[4],
        h[5] * h[6] - h[3] * h[8], h[0] * h[8] - h[2] * h[6], h[2] * h[3] - h[0] * h[5],
        h[3] * h[7] - h[4] * h[6], h[1] * h[6] - h[0] * h[7], h[0] * h[4] - h[1] * h[3]};
    auto const seen = [&](double x, double y)
    {
        Mtx_Vector2 const p = through(back ? inverse : h, {x * record.width, y * record.height});
        return Mtx_Vector2{p.x / record.width, p.y / record.height};
    };
    for (std::vector<double>& edge : outline.edges)
    {
        for (std::size_t i = 0; i < edge.size(); i += 6)
        {
            double* const v = &edge[i];
            Mtx_Vector2 const at = seen(v[0], v[1]);
            for (std::size_t handle : {2, 4})
            {
                Mtx_Vector2 const tip = seen(v[0] + v[handle], v[1] + v[handle + 1]);
                v[handle] = tip.x - at.x;
                v[handle + 1] = tip.y - at.y;
            }
            v[0] = at.x;
            v[1] = at.y;
        }
    }
}

/// What docs/outline-text.md tells readers to do between two texts of Bezier outlines.
inline Outline interpolated(QString const& first, QString const& second, Korvane::Contour::HomographyMap const& motion,
                            int firstFrame, int secondFrame, int frame)
{
    Outline a = parseOutline(first);
    Outline b = parseOutline(second);
    carry(a, motion.value(contextAt(firstFrame)), true);
    carry(b, motion.value(contextAt(secondFrame)), true);
    EXPECT_EQ(a.edges.size(), b.edges.size());
    double const along = static_cast<double>(frame - firstFrame) / (secondFrame - firstFrame);
    for (std::size_t edge = 0; edge < a.edges.size(); ++edge)
    {
        for (std::size_t i = 0; i < a.edges[edge].size(); ++i)
        {
            a.edges[edge][i] += along * (b.edges[edge][i] - a.edges[edge][i]);
        }
    }
    carry(a, motion.value(contextAt(frame)), false);
    return a;
}

}
