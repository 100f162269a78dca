// The node of a shape in Nuke's roto text:
//
//   Node: {
//    NodeName: "Contour" {
//     NodeType: 3
//     CurveGroup: "" {
//      Transform2: ...                 when the shape moves by itself
//      Flag: 0
//      NumOfCubicCurves: 2
//      CubicCurve: "" {                the outline, then in the same way its feather
//       Type: 0 Flag: 8224 Dim: 2
//       NumOfPoints: 12
//       0 L 0 4096 0.5 2 0 0 "" 0 250 "" 1001 960.5 0 1.25 1 1.25 1 258 0 ...
//      }
//     ...
//
// Points are handle, vertex, handle for each vertex; handles are relative to their
// vertex, and vertices of the feather to those of the outline.

#include "Nuke/NukeRotoExporterBase.h"

#include "Host/ExporterHelper.h"
#include "Host/KORV_ProjectManager.h"
#include "Writing/ThrowHelpers.h"
#include "Writing/Values.h"
#include "text/Names.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Export
{

namespace
{

constexpr char SHAPE_ATTRIBUTES[] =
    " \"mbo\" S 0 0 \"mb\" S 0 1 \"mbs\" S 0 0.5 \"mbsot\" S 0 0 \"mbso\" S 0 0 \"fo\" S 0 1 \"fx\" S 0 0 \"fy\" S 0 0 "
    "\"ff\" S 0 1 \"ft\" S 0 0 \"nv\" S 0 1 \"view1\" S 0 ";

enum CurveFlag
{
    OpenCurve = 8192,
    ClosedCurve = 8224
};

constexpr int MULTIPLY_BLEND = 12;

constexpr char BODY_LEAD[] = "       0 ";

// Of " 0 0 " behind a point the part that belongs to the point that doesn't follow.
constexpr int LEAD_OF_NEXT_POINT = 3;

/// When a shape is visible.
enum LifetimeType
{
    AllFrames = 0,
    UpToLast = 1,
    OneFrame = 2,
    FromFirst = 3,
    FirstToLast = 4
};

using BezierCurves = std::vector<Korvane::ExportBezierCurve const*>;

BezierCurves bezierCurves(Korvane::ExportedShape::Curves const& curves)
{
    BezierCurves beziers;
    beziers.reserve(static_cast<std::size_t>(curves.size()));
    for (boost::shared_ptr<Korvane::ExportCurveBase> const& curve : curves)
    {
        auto const* const bezier = dynamic_cast<Korvane::ExportBezierCurve const*>(curve.get());
        if (!bezier)
        {
            throwOperationFailed("NukeRotoShape", 0, QStringLiteral("shapeToStr"),
                                 QStringLiteral("X-Splines are not supported"));
        }
        beziers.push_back(bezier);
    }
    return beziers;
}

/// Also once differences and slopes are made of it: what a float can't hold is no place in a
/// picture.
bool isFinite(Mtx_Vector2 const& vector)
{
    constexpr double MOST = std::numeric_limits<float>::max();
    return isWritable(vector.x) && isWritable(vector.y) && std::abs(vector.x) < MOST && std::abs(vector.y) < MOST;
}

bool isFinite(Korvane::ExportBezierCurve const& curve)
{
    bool finite = isWritable(curve.time);
    for (int i = 0; i < curve.numSpans() && finite; ++i)
    {
        Sabrel::BezierSpan const& span = curve[static_cast<std::size_t>(i)];
        finite = isFinite(span.start) && isFinite(span.control1) && isFinite(span.control2);
    }
    return finite;
}

double slope(double from, double to, double frames)
{
    constexpr double SHORTEST_GAP = 0.01;
    return frames < SHORTEST_GAP ? 0.0 : (to - from) / frames;
}

int lifetimeType(double first, double last, int frameCount)
{
    if (first == last)
    {
        return OneFrame;
    }
    bool const endsWithProject = last == frameCount - 1;
    if (first == 0)
    {
        return endsWithProject ? AllFrames : UpToLast;
    }
    return endsWithProject ? FromFirst : FirstToLast;
}

/// @param suffix of the names: nothing for the fill, "o" for the overlay
void appendColour(TextBuffer& out, QColor const& colour, char const* suffix)
{
    auto const appendComponent = [&](char component, double value)
    { out << '"' << component << suffix << "\" S 0 " << General{value}; };
    appendComponent('r', colour.redF());
    out << ' ';
    appendComponent('g', colour.greenF());
    out << ' ';
    appendComponent('b', colour.blueF());
    out << ' ';
    appendComponent('a', 1);
}

void appendAttribute(TextBuffer& out, char const* name, int value)
{
    out << " \"" << name << "\" S 0 " << Integer{value};
}

/// The keys of a shape, checked: what the curves are read from.
struct ShapeKeys
{
    BezierCurves masks;
    BezierCurves blurs;

    /// Shown frame numbers.
    std::vector<double> times;

    /// Frames from the key before to each key; 0 in front of the first and behind the last.
    std::vector<double> gaps;
    std::size_t vertexCount = 0;

    /// How many keys aren't finite and so not here.
    unsigned int leftOut = 0;

    ShapeKeys(QString const& name, Korvane::ExportedShape::Curves const& maskCurves,
              Korvane::ExportedShape::Curves const& blurCurves)
    {
        BezierCurves const allMasks = bezierCurves(maskCurves);
        BezierCurves const allBlurs = bezierCurves(blurCurves);
        requireAlike(name, allMasks, allBlurs);
        for (std::size_t key = 0; key < allMasks.size(); ++key)
        {
            if (isFinite(*allMasks[key]) && isFinite(*allBlurs[key]))
            {
                addKey(allMasks[key], allBlurs[key]);
            }
        }
        gaps.push_back(0);
        leftOut = static_cast<unsigned int>(allMasks.size() - masks.size());
        if (masks.empty())
        {
            throwOperationFailed("NukeRotoShape", 0, QStringLiteral("shapeToStr"),
                                 QStringLiteral("The shape \"%1\" has no outline with finite values").arg(name));
        }
    }

    Sabrel::BezierSpan const& mask(std::size_t key, std::size_t vertex) const
    {
        return (*masks[key])[vertex];
    }

    Sabrel::BezierSpan const& blur(std::size_t key, std::size_t vertex) const
    {
        return (*blurs[key])[vertex];
    }

    /// The vertex before, around the curve.
    std::size_t before(std::size_t vertex) const
    {
        return (vertex + vertexCount - 1) % vertexCount;
    }

private:
    void addKey(Korvane::ExportBezierCurve const* mask, Korvane::ExportBezierCurve const* blur)
    {
        gaps.push_back(times.empty() ? 0 : std::abs(mask->time - times.back()));
        masks.push_back(mask);
        blurs.push_back(blur);
        times.push_back(mask->time);
    }

    void requireAlike(QString const& name, BezierCurves const& allMasks, BezierCurves const& allBlurs)
    {
        int const spans = allMasks.empty() ? 0 : allMasks.front()->numSpans();
        auto const hasOtherSpans = [spans](Korvane::ExportBezierCurve const* curve)
        { return curve->numSpans() != spans || spans == 0; };
        if (allMasks.size() != allBlurs.size() || std::any_of(allMasks.begin(), allMasks.end(), hasOtherSpans) ||
            std::any_of(allBlurs.begin(), allBlurs.end(), hasOtherSpans))
        {
            throwAssertionFailed(QStringLiteral("The keys of the shape \"%1\" differ in their vertices").arg(name));
        }
        vertexCount = static_cast<std::size_t>(spans);
    }
};

/// A curve over all keys, then its value where it isn't animated.
///
/// @param valueAt value by key
/// @param written turns a value into what is written for it; slopes are of the value
template <typename ValueAt, typename Written>
void appendCurve(TextBuffer& out, ShapeKeys const& keys, ValueAt const& valueAt, Written const& written,
                 char const* tail)
{
    std::size_t const count = keys.times.size();
    double const first = valueAt(0);
    if (count == 1)
    {
        out << "S 1 " << Integer{static_cast<long long>(keys.times[0])} << ' ';
    }
    else
    {
        out << "L 0 4096 0.5 2 0 0 \"\" 0 " << Integer{static_cast<long long>(count)} << ' ';
        double before = first;
        double value = first;
        for (std::size_t key = 0; key < count; ++key)
        {
            double const after = key + 1 < count ? valueAt(key + 1) : value;
            NukeRotoExporterBase::appendFormattedF(out, Anm::Time::fromDouble(keys.times[key]), written(value),
                                                   slope(before, value, keys.gaps[key]),
                                                   slope(value, after, keys.gaps[key + 1]));
            before = value;
            value = after;
        }
    }
    NukeRotoExporterBase::appendFormattedS(out, written(first), tail);
}

/// The curves of x and of y, and the lead of the next point.
template <typename PointAt, typename Written>
void appendPoint(TextBuffer& out, ShapeKeys const& keys, PointAt const& pointAt, Written const& written)
{
    appendCurve(
        out, keys, [&](std::size_t key) { return pointAt(key).x; }, written, " ");
    appendCurve(
        out, keys, [&](std::size_t key) { return pointAt(key).y; }, written, " 0 0 ");
}

double asItIs(double value)
{
    return value;
}

void appendMainBody(TextBuffer& out, ShapeKeys const& keys, Obfuscate const& obfuscator)
{
    auto const obfuscated = [&](double value) { return obfuscator.obfuscate(value); };
    out << BODY_LEAD;
    for (std::size_t vertex = 0; vertex < keys.vertexCount; ++vertex)
    {
        std::size_t const before = keys.before(vertex);
        appendPoint(
            out, keys, [&](std::size_t key) { return keys.mask(key, before).control2; }, asItIs);
        appendPoint(
            out, keys, [&](std::size_t key) { return keys.mask(key, vertex).start; }, obfuscated);
        appendPoint(
            out, keys, [&](std::size_t key) { return keys.mask(key, vertex).control1; }, asItIs);
    }
    out.chop(LEAD_OF_NEXT_POINT);
}

void appendFeatherBody(TextBuffer& out, ShapeKeys const& keys)
{
    out << BODY_LEAD;
    for (std::size_t vertex = 0; vertex < keys.vertexCount; ++vertex)
    {
        std::size_t const before = keys.before(vertex);
        auto const offsetAt = [&](std::size_t key)
        {
            Mtx_Vector2 const& outer = keys.blur(key, vertex).start;
            Mtx_Vector2 const& inner = keys.mask(key, vertex).start;
            return Mtx_Vector2{outer.x - inner.x, outer.y - inner.y};
        };
        appendPoint(
            out, keys, [&](std::size_t key) { return keys.blur(key, before).control2; }, asItIs);
        appendPoint(out, keys, offsetAt, asItIs);
        appendPoint(
            out, keys, [&](std::size_t key) { return keys.blur(key, vertex).control1; }, asItIs);
    }
    out.chop(LEAD_OF_NEXT_POINT);
}

/// The lines in front of a body.
void appendCurveHead(TextBuffer& out, Korvane::ExportBezierCurve const& outline,
                     Korvane::ExportBezierCurve const& curve)
{
    constexpr int POINTS_PER_SPAN = 3;
    out << "      CubicCurve: \"\" {\n"
        << "       Type: 0 Flag: " << Integer{outline.closed ? ClosedCurve : OpenCurve} << " Dim: 2\n"
        << "       NumOfPoints: " << Integer{POINTS_PER_SPAN * curve.numSpans()} << "\n";
}

}

unsigned int NukeRotoExporterBase::shapeToStr(TextBuffer& out, KORV_ProjectManager const& project, QString const& name,
                                              KORV_Clip const*, Anm::View const& view,
                                              Korvane::ExportedShape::Curves const& maskCurves,
                                              Korvane::ExportedShape::Curves const& blurCurves,
                                              std::vector<KORV_ExportHomography> const& homographies,
                                              Korvane::TrackingExporterHelper const& helper, ZN_BlendMode blend,
                                              bool inverted, QColor const& fill, QColor const& overlay) const
{
    ShapeKeys const keys(name, maskCurves, blurCurves);
    out << "   Node: {\n"
        << "    NodeName: \"" << Text::blanksToUnderscores(name) << "\" {\n"
        << "     NodeType: 3\n"
        << "     CurveGroup: \"\" {\n";
    if (!homographies.empty())
    {
        out << "      ";
        getTransformBlock(out, homographies);
    }
    out << "      Flag: 0\n"
        << "      NumOfCubicCurves: 2\n";
    appendCurveHead(out, *keys.masks.front(), *keys.masks.front());
    appendMainBody(out, keys, *this);
    out << "\n"
        << "      }\n";
    appendCurveHead(out, *keys.masks.front(), *keys.blurs.front());
    appendFeatherBody(out, keys);
    out << "\n"
        << "      }\n"
        << "      NumOfAttributes: 27\n"
        << "      \"vis\" S 0 1 ";
    appendColour(out, fill, "");
    out << ' ';
    appendColour(out, overlay, "o");

    double const first = helper.firstFrame().value();
    double const last = helper.lastFrame().value();
    appendAttribute(out, "opc", 1);
    appendAttribute(out, "bm", blend == ZN_BLEND_ADD ? 0 : MULTIPLY_BLEND);
    appendAttribute(out, "inv", inverted ? 1 : 0);
    out << SHAPE_ATTRIBUTES << Integer{project.views()->viewIndex(view) + 1};
    appendAttribute(out, "ltn", static_cast<int>(first) + project.frameOffset());
    appendAttribute(out, "ltm", static_cast<int>(last) + project.frameOffset());
    appendAttribute(out, "ltt", lifetimeType(first, last, project.frameCount()));
    out << "\n"
        << "     }\n"
        << "    }\n"
        << "    NumOfChildren: 0\n"
        << "   }\n";
    return keys.leftOut;
}

}
