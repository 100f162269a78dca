// X-splines as Bezier curves: how near they keep, as it is seen, with how many vertices.

#include "ShapeFixtures.h"

#include <cstdlib>

using namespace ShapeTest;

namespace
{

using Matrix = ProjectBuilder::Matrix;

// The blending functions straight from the paper, by knots: the points of a segment are
// at 0, 1, 2 and 3, and the segment lies between 1 and 2.
double rising(double u, double p)
{
    return u * u * u * (10 - p + (2 * p - 15) * u + (6 - p) * u * u);
}

double going(double u, double q)
{
    return q * u + 2 * q * u * u + (8 - 12 * q) * u * u * u + (14 * q - 11) * std::pow(u, 4) +
           (4 - 5 * q) * std::pow(u, 5);
}

double undershooting(double u, double q)
{
    return q * u + 2 * q * u * u - 2 * q * std::pow(u, 4) - q * std::pow(u, 5);
}

/// The share of the point at knot `own` whose influence begins (or ends) at `edge`.
double share(double t, double own, double edge)
{
    double const u = (t - edge) / (own - edge);
    return u > 0 ? rising(u, 2 * (own - edge) * (own - edge)) : 0;
}

std::array<double, 4> shares(double t, double s1, double s2)
{
    return {s1 < 0 ? undershooting(1 - t, -s1 / 2) : share(t, 0, 1 + s1),
            s2 < 0 ? going(2 - t, -s2 / 2) : share(t, 1, 2 + s2), s1 < 0 ? going(t - 1, -s1 / 2) : share(t, 2, 1 - s1),
            s2 < 0 ? undershooting(t - 2, -s2 / 2) : share(t, 3, 2 - s2)};
}

/// Many points on the X-spline, for each segment from its start to its end.
std::vector<Mtx_Vector2> samples(std::vector<double> const& points, bool closed, int perSegment)
{
    int const count = static_cast<int>(points.size() / 3);
    auto const index = [&](int i) { return closed ? (i + count) % count : std::min(std::max(i, 0), count - 1); };
    auto const weight = [&](int i)
    { return !closed && (i == 0 || i == count - 1) ? 0 : points[static_cast<std::size_t>(index(i)) * 3 + 2]; };
    std::vector<Mtx_Vector2> curve;
    for (int segment = 0; segment < (closed ? count : count - 1); ++segment)
    {
        for (int i = 0; i <= perSegment; ++i)
        {
            auto const f = shares(1 + static_cast<double>(i) / perSegment, weight(segment), weight(segment + 1));
            Mtx_Vector2 at;
            for (int k = 0; k < 4; ++k)
            {
                auto const from = static_cast<std::size_t>(index(segment - 1 + k)) * 3;
                double const part = f[static_cast<std::size_t>(k)] / (f[0] + f[1] + f[2] + f[3]);
                at.x += part * points[from];
                at.y += part * points[from + 1];
            }
            curve.push_back(at);
        }
    }
    return curve;
}

std::vector<Mtx_Vector2> samples(Korvane::ExportBezierCurve const& curve, int perSpan)
{
    std::vector<Mtx_Vector2> points;
    auto const count = static_cast<std::size_t>(curve.numSpans());
    for (std::size_t span = 0; span < (curve.closed ? count : count - 1); ++span)
    {
        Mtx_Vector2 const a = curve[span].start;
        Mtx_Vector2 const d = curve[(span + 1) % count].start;
        Mtx_Vector2 const b = sum(a, curve[span].control1);
        Mtx_Vector2 const c = sum(d, curve[span].control2);
        for (int i = 0; i <= perSpan; ++i)
        {
            double const t = static_cast<double>(i) / perSpan;
            double const s = 1 - t;
            points.push_back({s * s * s * a.x + 3 * s * s * t * b.x + 3 * s * t * t * c.x + t * t * t * d.x,
                              s * s * s * a.y + 3 * s * s * t * b.y + 3 * s * t * t * c.y + t * t * t * d.y});
        }
    }
    return points;
}

double distanceToLine(Mtx_Vector2 const& p, Mtx_Vector2 const& a, Mtx_Vector2 const& b)
{
    double const dx = b.x - a.x;
    double const dy = b.y - a.y;
    double const square = dx * dx + dy * dy;
    double const t = square > 0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / square, 0.0, 1.0) : 0;
    return std::hypot(p.x - a.x - t * dx, p.y - a.y - t * dy);
}

/// The largest distance of every third point from a polygon.
double farthest(std::vector<Mtx_Vector2> const& points, std::vector<Mtx_Vector2> const& polygon)
{
    double largest = 0;
    for (std::size_t i = 0; i < points.size(); i += 3)
    {
        double nearest = 1e9;
        for (std::size_t j = 0; j + 1 < polygon.size(); ++j)
        {
            nearest = std::min(nearest, distanceToLine(points[i], polygon[j], polygon[j + 1]));
        }
        largest = std::max(largest, nearest);
    }
    return largest;
}

struct Case
{
    char const* name;
    std::vector<double> weights;
    bool closed;

    /// Of the motion: perspective per pixel, and scale.
    double tilt;
    double scale;
    int mostVertices;
    bool interlaced = false;
};

std::ostream& operator<<(std::ostream& out, Case const& wanted)
{
    return out << wanted.name;
}

class XSplines : public testing::TestWithParam<Case>
{
protected:
    // Six points around the middle of the picture, two of them close together.
    static std::vector<double> points(std::vector<double> const& weights, double grown)
    {
        double const at[][2] = {{600, 200}, {1300, 240}, {1500, 540}, {1480, 580}, {900, 900}, {420, 640}};
        std::vector<double> numbers;
        for (std::size_t i = 0; i < 6; ++i)
        {
            double const lift = grown * 60 * static_cast<double>(i % 3);
            numbers.insert(numbers.end(), {at[i][0] * (1 - 0.2 * grown) + lift, at[i][1] - lift, weights[i]});
        }
        return numbers;
    }
};

TEST_P(XSplines, KeepWithinATwentiethOfAPixelAsTheyAreSeen)
{
    Case const& wanted = GetParam();
    ProjectBuilder builder(9, 1920, 1080);
    builder.clip().interlaced = wanted.interlaced;
    builder.addLayer("A");
    auto const motion = [&](int frame)
    {
        Matrix h = ProjectBuilder::similarity(960, 540, 0.1 * frame, 1 + (wanted.scale - 1) * frame / 8, 9 * frame, 0);
        h[6] = wanted.tilt * frame / 8;
        h[7] = -0.5 * wanted.tilt * frame / 8;
        return h;
    };
    builder.track(motion);
    auto contour = xspline({{1, points(wanted.weights, 0), {}}, {7, points(wanted.weights, 1), {}}});
    contour.closed = wanted.closed;
    builder.layer().contours = {contour};

    ExportedShape const baked = shapeOf(builder, 0, 8, 1 + 2 + 8);
    ExportedShape const apart = shapeOf(builder, 0, 8, 1 + 4 + 64);
    double const lines = wanted.interlaced ? 2 : 1;
    double largest = 0;
    for (int frame = 0; frame <= 8; frame += 2)
    {
        Korvane::ExportBezierCurve const& curve = bezierAt(baked.maskShape(0, 0), frame);
        std::vector<double> numbers = points(wanted.weights, 0);
        std::vector<double> const later = points(wanted.weights, 1);
        for (std::size_t i = 0; i < numbers.size(); ++i)
        {
            numbers[i] += std::clamp((frame - 1) / 6.0, 0.0, 1.0) * (later[i] - numbers[i]);
        }
        std::vector<Mtx_Vector2> spline = samples(numbers, wanted.closed, 400);
        for (Mtx_Vector2& p : spline)
        {
            p = through(motion(frame), p);
            p.y *= lines;
        }
        // The samples' own polygon is within 0.003 of the curves.
        std::vector<Mtx_Vector2> const cubics = samples(curve, 2400 / curve.numSpans());
        largest = std::max({largest, farthest(cubics, spline), farthest(spline, cubics)});
        EXPECT_EQ(curve.numSpans(), bezierAt(apart.maskShape(0, 0), 0).numSpans());
    }
    EXPECT_LE(largest, 0.05);
    int const vertices = bezierAt(baked.maskShape(0, 0), 0).numSpans();
    EXPECT_LE(vertices, wanted.mostVertices);
    RecordProperty("largest", std::to_string(largest));
    RecordProperty("vertices", vertices);
    if (std::getenv("MARLO_PRINT"))
    {
        std::printf("%s: %.4f px, %d vertices\n", wanted.name, largest, vertices);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, XSplines,
                         testing::Values(Case{"Corners", {0, 0, 0, 0, 0, 0}, true, 0, 1, 6},
                                         Case{"Round", {1, 1, 1, 1, 1, 1}, true, 0, 1, 99},
                                         Case{"Through", {-1, -1, -1, -1, -1, -1}, true, 0, 1, 99},
                                         Case{"Mixed", {0.3, -0.4, 0, 0.7, -1, 1}, true, 2e-5, 1.5, 99},
                                         Case{"MixedInPerspective", {0.3, -0.4, 0, 0.7, -1, 1}, true, 3e-4, 2, 199},
                                         Case{"RoundInPerspective", {1, 1, 1, 1, 1, 1}, true, 5e-4, 1, 199},
                                         Case{"CornersInPerspective", {0, 0, 0, 0, 0, 0}, true, 5e-4, 1, 6},
                                         Case{"Open", {0.5, 1, -1, 1, 0.2, -0.5}, false, 1e-4, 1, 99},
                                         Case{"Enlarged", {1, -1, 1, -1, 1, -1}, true, 0, 8, 199},
                                         Case{"Fields", {1, -0.5, 1, 0, 0.5, 1}, true, 1e-4, 1, 99, true}),
                         [](auto const& wanted) { return wanted.param.name; });

TEST(XSpline, StaysOneWhereItsTypeIsKept)
{
    ProjectBuilder builder(2, 400, 200);
    builder.addLayer("A").track([](int frame) { return ProjectBuilder::translation(10 * frame, 0); });
    builder.layer().contours = {xspline({{0, {10, 20, 0.5, 200, 30, -1, 90, 150, 1}, {}}})};
    for (unsigned int const flags : {1u, 1u + 8u, 1u + 2u + 32u, 1u + 64u + 32u})
    {
        ExportedShape const shape = shapeOf(builder, 0, 1, flags);
        auto const& curve = dynamic_cast<Korvane::ExportXSplineCurve const&>(*shape.maskShape(0, 0)[1]);
        EXPECT_EQ(curve.numSpans(), 3);
        EXPECT_EQ(curve.point(1).x, 210);
        EXPECT_EQ(curve.weight(1), -1);
        EXPECT_THROW(curve.point(3), std::out_of_range);
    }
}

TEST(XSpline, WeightsThatChangeAreFollowedWhenTheyAreBaked)
{
    ProjectBuilder builder(5, 1000, 1000);
    builder.addLayer("A");
    auto const points = [](double weight)
    { return std::vector<double>{100, 100, weight, 900, 100, weight, 900, 900, weight, 100, 900, weight}; };
    builder.layer().contours = {xspline({{0, points(0), points(0.5)}, {4, points(1), {}}})};
    ExportedShape const shape = shapeOf(builder, 0, 4, 1 + 2 + 8);
    for (int frame = 0; frame <= 4; ++frame)
    {
        auto const& mask = bezierAt(shape.maskShape(0, 0), frame);
        auto const& blur = bezierAt(shape.blurShape(0, 0), frame);
        EXPECT_EQ(blur.numSpans(), mask.numSpans());
        EXPECT_LE(farthest(samples(points(frame / 4.0), true, 400), samples(mask, 200)), 0.05);
        EXPECT_LE(farthest(samples(points(0.5 + frame / 8.0), true, 400), samples(blur, 200)), 0.05);
    }
}

/// What a target makes of two keys and the motion: vertices and tips linear in between, and carried.
Korvane::ExportBezierCurve between(ExportedShape::Curves const& keys, int after, int frame, Matrix const& motion)
{
    auto const& a = bezierAt(keys, after - 1);
    auto const& b = bezierAt(keys, after);
    double const along = (frame - a.time) / (b.time - a.time);
    auto const seen = [&](Mtx_Vector2 const& p, Mtx_Vector2 const& q) {
        return through(motion, {p.x + along * (q.x - p.x), p.y + along * (q.y - p.y)});
    };
    auto const handle = [](Mtx_Vector2 const& tip, Mtx_Vector2 const& at) {
        return Mtx_Vector2{tip.x - at.x, tip.y - at.y};
    };
    std::vector<Sabrel::BezierSpan> spans;
    auto const count = static_cast<std::size_t>(a.numSpans());
    for (std::size_t i = 0; i < count; ++i)
    {
        std::size_t const next = (i + 1) % count;
        Mtx_Vector2 const at = seen(a[i].start, b[i].start);
        Mtx_Vector2 const leaves = seen(sum(a[i].start, a[i].control1), sum(b[i].start, b[i].control1));
        Mtx_Vector2 const arrives = seen(sum(a[next].start, a[i].control2), sum(b[next].start, b[i].control2));
        spans.push_back({at, handle(leaves, at), handle(arrives, seen(a[next].start, b[next].start))});
    }
    return {static_cast<double>(frame), true, spans};
}

TEST(XSpline, WeightsThatChangeGetTheKeysThatTheyNeedApartFromTheMotion)
{
    // From a round bend through a corner to one that goes through the point, gently, and not at all.
    double const cases[][4] = {{1, -1, 0, 24}, {-1, 1, 1e-4, 24}, {0.4, 0.6, 3e-5, 16}, {1, 1, 1e-4, 4}};
    for (auto const& [from, to, tilt, mostKeys] : cases)
    {
        auto const points = [](double weight, double far)
        { return std::vector<double>{300, 200, weight, 1500 + far, 240, 1, 1400, 900, -weight / 2, 420, 840, weight}; };
        ProjectBuilder builder(61, 1920, 1080);
        std::vector<Matrix> motion(61);
        for (int frame = 0; frame < 61; ++frame)
        {
            motion[frame] = ProjectBuilder::similarity(960, 540, 0.01 * frame, 1, 2 * frame, 0);
            motion[frame][6] = tilt * frame / 40;
        }
        builder.addLayer("A").track([&](int frame) { return motion[frame]; });
        builder.layer().contours = {xspline({{20, points(from, 80), points(from, 30)}, {60, points(to, 0), {}}})};
        ExportedShape const shape = shapeOf(builder, 0, 40, 1 + 4 + 8 + 64);
        ExportedShape::Curves const& keys = shape.maskShape(0, 0);
        EXPECT_LE(keys.size(), mostKeys) << from << " to " << to;
        for (int frame = 19, key = 1; frame < 40; frame += 4)
        {
            for (; keys[key]->time < frame; ++key)
            {
            }
            double const along = std::max(0.0, (frame - 20) / 40.0);
            std::vector<Mtx_Vector2> spline = samples(points(from + along * (to - from), 80 - 80 * along), true, 400);
            std::transform(spline.begin(), spline.end(), spline.begin(),
                           [&](Mtx_Vector2 const& p) { return through(motion[frame], p); });
            std::vector<Mtx_Vector2> const cubics = samples(between(keys, key, frame, motion[frame]), 100);
            double const largest = std::max(farthest(cubics, spline), farthest(spline, cubics));
            EXPECT_LE(largest, 0.05) << from << " to " << to << ", frame " << frame;
        }
    }
}

TEST(XSpline, NeitherInfinityNorTheHorizonAsksForEndlessSpans)
{
    ProjectBuilder builder(3, 400, 200);
    // The horizon passes close by, then through the contour.
    builder.addLayer("A", {10, 10, 60, 10, 10, 60, 60, 60});
    builder.track([](int frame)
                  { return Matrix{1, 0, 0, 0, 1, 0, frame == 0 ? 0 : frame == 1 ? -1 / 200.001 : -0.01, 0, 1}; });
    builder.layer().contours = {xspline({{0, {10, 20, 1, 200, 30, 1, 90, 150, 1}, {}}})};
    EXPECT_LE(bezierAt(shapeOf(builder, 0, 2, 1 + 2).maskShape(0, 0), 0).numSpans(), 3 * 32);
    builder.layer().contours[0].keys[0].points[0] = NAN;
    EXPECT_EQ(bezierAt(shapeOf(builder, 0, 0, 1 + 2).maskShape(0, 0), 0).numSpans(), 3);
}

}
