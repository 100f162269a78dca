// Contours as exporters get them: keyed and baked curves with every flag, texts, parts
// of homographies, meshes.

#include "ShapeFixtures.h"

#include "Host/ExporterHelper.h"
#include "Host/MeshTracking.h"
#include "Host/MessageBox.h"
#include "Host/ShapeExporter.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace ShapeTest;

namespace
{

using Matrix = ProjectBuilder::Matrix;

// A triangle, counter-clockwise with y up; only the first vertex has handles.
std::vector<double> triangle(double x = 100, double y = 50)
{
    return {x, y, -3, 6, 9, -12, x + 200, y, 0, 0, 0, 0, x, y + 100, 0, 0, 0, 0};
}

ProjectBuilder triangleProject(int frames = 3)
{
    ProjectBuilder builder(frames, 400, 200);
    builder.addLayer("A", {100, 40, 300, 40, 100, 160, 300, 160});
    builder.track([](int frame) { return ProjectBuilder::translation(10 * frame, 4 * frame); });
    builder.layer().contours = {bezier({{0, triangle(), {}}})};
    return builder;
}

// Perspective, a turn and a scale that grow with time.
Matrix tilted(int frame, double strength)
{
    Matrix h = ProjectBuilder::similarity(200, 100, 0.15 * frame, 1 + 0.05 * frame, 3 * frame, -2 * frame);
    h[6] = strength * frame;
    h[7] = -0.6 * strength * frame;
    return h;
}

TEST(Shapes, EveryFlagMovesTheSameVertexToWhereItsTargetLooksForIt)
{
    // Vertex and leaving handle at frame 2, where the plane is 20 to the right and 8 up; kept
    // apart it is where it was drawn.
    struct Case
    {
        unsigned int flags;
        bool interlaced;
        double x, y, dx, dy;
        int keys;
        double lastTime;
    };
    Case const cases[] = {
        {1, false, 120, 58, 9, -12, 3, 1003},
        {0, false, 0.3, 0.29, 9.0 / 400, -12.0 / 200, 3, 1003},
        {1 + 16, false, 120, 142, 9, 12, 3, 1003},
        {16, false, 0.3, 0.71, 9.0 / 400, 12.0 / 200, 3, 1003},
        {1 + 4, false, 100, 50, 9, -12, 2, 1003},
        {1 + 4 + 16, false, 100, 150, 9, 12, 2, 1003},
        // Fields have 100 lines; y comes in those of the full frame.
        {1, true, 120, 116, 9, -24, 3, 501.5},
        {1 + 16, true, 120, 84, 9, 24, 3, 501.5},
        {0, true, 0.3, 0.58, 9.0 / 400, -12.0 / 100, 3, 501.5},
        {1 + 4, true, 100, 100, 9, -24, 2, 501.5},
    };
    for (Case const& wanted : cases)
    {
        SCOPED_TRACE(testing::Message() << "flags " << wanted.flags << (wanted.interlaced ? ", interlaced" : ""));
        ProjectBuilder builder = triangleProject();
        builder.clip().frameOffset = 1001;
        builder.clip().interlaced = wanted.interlaced;
        ExportedShape const shape = shapeOf(builder, 0, 2, wanted.flags);
        ASSERT_EQ(shape.maskShape(0, 0).size(), wanted.keys);
        EXPECT_EQ(shape.maskShape(0, 0).back()->time, wanted.lastTime);
        Sabrel::BezierSpan const& span = bezierAt(shape.maskShape(0, 0), wanted.keys - 1)[0];
        EXPECT_NEAR(span.start.x, wanted.x, 1e-12);
        EXPECT_NEAR(span.start.y, wanted.y, 1e-12);
        EXPECT_NEAR(span.control1.x, wanted.dx, 1e-12);
        EXPECT_NEAR(span.control1.y, wanted.dy, 1e-12);
        EXPECT_TRUE(shape.blurShape(0, 0).isEmpty());
        EXPECT_EQ(shape.transform(0, 0).size(), (wanted.flags & 4) != 0 ? 3u : 0u);
        // The handle that arrives at the first vertex stands in the last span.
        double const side = wanted.dy / -12;
        EXPECT_NEAR(bezierAt(shape.maskShape(0, 0), 0)[2].control2.y, 6 * side, 1e-12);
    }
}

TEST(Shapes, CurvesAndTransformTogetherAreTheBakedCurves)
{
    // The offset moves the transform only: it acts on curves that the exporter moved.
    QPointF const offset(-190, 33);
    for (bool const interlaced : {false, true})
    {
        for (unsigned int const flags : {1u, 1u + 16u, 0u, 16u})
        {
            SCOPED_TRACE(testing::Message() << "flags " << flags << (interlaced ? ", interlaced" : ""));
            ProjectBuilder builder = triangleProject(6);
            builder.clip().interlaced = interlaced;
            builder.track([](int frame) { return tilted(frame, 1e-4); });
            builder.layer().adjust = {{1, {4, 0, 0, -3, 2, 2, 0, 5}}};
            ExportedShape const baked = shapeOf(builder, 1, 4, flags);
            ExportedShape const apart = shapeOf(builder, 1, 4, flags + 4, 1, offset);
            Korvane::ExportBezierCurve const& rest = bezierAt(apart.maskShape(0, 0), 0);
            ASSERT_EQ(apart.transform(0, 0).size(), 4u);
            for (int i = 0; i < 4; ++i)
            {
                KORV_ExportHomography const& map = apart.transform(0, 0)[static_cast<std::size_t>(i)];
                EXPECT_EQ(map.m[8], 1e6);
                EXPECT_EQ(map.time, baked.maskShape(0, 0)[i]->time);
                Korvane::ExportBezierCurve const& seen = bezierAt(baked.maskShape(0, 0), i);
                for (std::size_t vertex = 0; vertex < 3; ++vertex)
                {
                    Mtx_Vector2 const tip = sum(rest[vertex].start, rest[vertex].control1);
                    EXPECT_POINT(through(map.m, rest[vertex].start, offset), seen[vertex].start, 1e-9);
                    EXPECT_POINT(through(map.m, tip, offset), sum(seen[vertex].start, seen[vertex].control1), 1e-9);
                }
            }
        }
    }
}

TEST(Shapes, KeptApartTheKeysAreTheEndsOfTheRangeAndTheContoursOwn)
{
    ProjectBuilder builder = triangleProject(40);
    builder.layer().contours = {bezier({{5, triangle(100), {}}, {9, triangle(140), {}}, {30, triangle(0), {}}})};
    ExportedShape const shape = shapeOf(builder, 7, 20, 1 + 4);
    ASSERT_EQ(shape.maskShape(0, 0).size(), 3);
    double const expected[][2] = {{7, 120}, {9, 140}, {20, 140 - 140 * 11.0 / 21}};
    for (int key = 0; key < 3; ++key)
    {
        EXPECT_EQ(shape.maskShape(0, 0)[key]->time, expected[key][0]);
        EXPECT_NEAR(bezierAt(shape.maskShape(0, 0), key)[0].start.x, expected[key][1], 1e-9);
    }
    EXPECT_EQ(shape.transform(0, 0).size(), 14u);

    // A single frame is baked, and nothing is left for the transform to do.
    ExportedShape const one = shapeOf(builder, 9, 9, 1 + 4);
    ASSERT_EQ(one.maskShape(0, 0).size(), 1);
    EXPECT_EQ(bezierAt(one.maskShape(0, 0), 0)[0].start.x, 140 + 90);
    ASSERT_EQ(one.transform(0, 0).size(), 1u);
    EXPECT_EQ(one.transform(0, 0)[0].m, (std::array<double, 9>{1e6, 0, 0, 0, 1e6, 0, 0, 0, 1e6}));
    EXPECT_EQ(shapeOf(builder, 0, 1, 1).maskShape(0, 0).size(), 2);
    EXPECT_EQ(bezierAt(shapeOf(builder, 39, 39, 1).maskShape(0, 0), 0)[0].start.x, 390) << "the last key holds";
}

TEST(Shapes, AreBakedWhereOnlyOneHomographyIsFinite)
{
    ProjectBuilder builder = triangleProject(4);
    builder.track([](int frame)
                  { return frame == 2 ? ProjectBuilder::translation(50, 0) : Matrix{NAN, 0, 0, 0, 1, 0, 0, 0, 1}; });
    ExportedShape const shape = shapeOf(builder, 0, 3, 1 + 4);
    ASSERT_EQ(shape.maskShape(0, 0).size(), 4);
    EXPECT_EQ(bezierAt(shape.maskShape(0, 0), 2)[0].start.x, 150);
    EXPECT_TRUE(std::isnan(bezierAt(shape.maskShape(0, 0), 1)[0].start.x)) << "to be dropped and counted";
    EXPECT_EQ(shape.transform(0, 0)[1].m, (std::array<double, 9>{1e6, 0, 0, 0, 1e6, 0, 0, 0, 1e6}));
}

TEST(Shapes, BlurFollowsTheFeatherAndTheScaleMovesItOnly)
{
    ProjectBuilder builder = triangleProject(5);
    std::vector<double> feather = triangle(90, 48);
    feather[4] = 21;
    // The second key has no feather: the edge closes.
    builder.layer().contours = {bezier({{0, triangle(), feather}, {4, triangle(), {}}})};
    builder.track([](int) { return ProjectBuilder::identity(); });
    for (double const scale : {1.0, 2.0})
    {
        ExportedShape const shape = shapeOf(builder, 0, 4, 1 + 8, scale);
        for (int frame = 0; frame <= 4; ++frame)
        {
            double const left = scale * (1 - frame / 4.0);
            Sabrel::BezierSpan const& mask = bezierAt(shape.maskShape(0, 0), frame)[0];
            Sabrel::BezierSpan const& blur = bezierAt(shape.blurShape(0, 0), frame)[0];
            EXPECT_EQ(mask.start.x, 100);
            EXPECT_NEAR(blur.start.x, 100 - 10 * left, 1e-12);
            EXPECT_NEAR(blur.start.y, 50 - 2 * left, 1e-12);
            EXPECT_NEAR(blur.control1.x, 9 + 12 * left, 1e-12);
        }
    }
    builder.layer().contours[0].keys[0].feather.clear();
    ExportedShape const plain = shapeOf(builder, 0, 4, 1 + 8, 2);
    EXPECT_EQ(bezierAt(plain.blurShape(0, 0), 2)[1].start.x, bezierAt(plain.maskShape(0, 0), 2)[1].start.x);
    EXPECT_NE(plain.blurShape(0, 0)[2].get(), plain.maskShape(0, 0)[2].get());
}

TEST(Shapes, OpenCurvesHaveNoHandlesBehindTheirEnds)
{
    ProjectBuilder builder = triangleProject();
    builder.layer().contours[0].closed = false;
    std::vector<double>& points = builder.layer().contours[0].keys[0].points;
    std::fill(points.begin() + 14, points.end(), 7);
    ExportedShape shape = shapeOf(builder, 0, 0, 1);
    shape.convertAllShapesToClockwise();
    Korvane::ExportBezierCurve const& curve = bezierAt(shape.maskShape(0, 0), 0);
    EXPECT_FALSE(curve.closed);
    EXPECT_EQ(curve.numSpans(), 3);
    EXPECT_EQ(curve[0].control1.x, 9);
    EXPECT_EQ(curve[1].control2.x, 7);
    EXPECT_EQ(curve[2].control1.x, 0);
    EXPECT_EQ(curve[2].control2.y, 0);
    EXPECT_EQ(curve[1].start.x, 300) << "an open curve isn't turned around";
}

TEST(Shapes, ClockwiseIsMeantAsItIsSeen)
{
    // A mirroring motion makes of a counter-clockwise contour a clockwise one.
    auto const mirror = [](int) { return Matrix{-1, 0, 400, 0, 1, 0, 0, 0, 1}; };
    struct Case
    {
        unsigned int flags;
        bool mirrored;
        bool turns;
    };
    for (Case const& wanted :
         {Case{1, false, true}, Case{1 + 16, false, true}, Case{1 + 4, false, true}, Case{1, true, false},
          Case{1 + 16, true, false}, Case{1 + 4, true, false}, Case{1 + 4 + 16, true, false}})
    {
        SCOPED_TRACE(testing::Message() << "flags " << wanted.flags << (wanted.mirrored ? ", mirrored" : ""));
        ProjectBuilder builder = triangleProject();
        builder.layer().contours[0].keys[0].feather = triangle(90);
        if (wanted.mirrored)
        {
            builder.track(mirror);
        }
        ExportedShape const before = shapeOf(builder, 0, 2, wanted.flags + 8);
        ExportedShape after = before;
        after.convertAllShapesToClockwise();
        for (auto const shapes : {&ExportedShape::maskShape, &ExportedShape::blurShape})
        {
            Korvane::ExportBezierCurve const& was = bezierAt((before.*shapes)(0, 0), 1);
            Korvane::ExportBezierCurve const& is = bezierAt((after.*shapes)(0, 0), 1);
            std::size_t const second = wanted.turns ? 2 : 1;
            EXPECT_POINT(is[0].start, was[0].start, 0);
            EXPECT_POINT(is[1].start, was[second].start, 0);
            EXPECT_POINT(is[0].control1, wanted.turns ? was[2].control2 : was[0].control1, 0);
            EXPECT_POINT(is[2].control2, wanted.turns ? was[0].control1 : was[2].control2, 0);
        }
        ExportedShape again = after;
        again.convertAllShapesToClockwise();
        EXPECT_POINT(bezierAt(again.maskShape(0, 0), 0)[1].start, bezierAt(after.maskShape(0, 0), 0)[1].start, 0);
    }

    // An outline that only its handles make counter-clockwise, and an X-spline.
    ProjectBuilder builder = triangleProject();
    builder.layer().contours = {bezier({{0, {0, 0, 0, 100, 0, -100, 100, 0, 0, -100, 0, 100}, {}}}),
                                xspline({{0, {0, 0, 1, 100, 0, 0, 0, 100, -1}, {}}})};
    ExportedShape shape = shapeOf(builder, 0, 0, 1);
    shape.convertAllShapesToClockwise();
    EXPECT_EQ(bezierAt(shape.maskShape(0, 0), 0)[0].control1.y, 100);
    auto const& spline = dynamic_cast<Korvane::ExportXSplineCurve const&>(*shape.maskShape(1, 0)[0]);
    EXPECT_EQ(spline.point(1).y, 100);
    EXPECT_EQ(spline.weight(0), 1);
    EXPECT_EQ(spline.weight(1), -1);
}

TEST(Shapes, OnlyActiveContoursAndEveryoneOfThem)
{
    ProjectBuilder builder = triangleProject();
    builder.layer().contours.push_back(builder.layer().contours[0]);
    builder.layer().contours[0].active = false;
    builder.layer().contours[1].name = "sécond";
    ExportedShape shape = shapeOf(builder, 0, 2, 1);
    ASSERT_EQ(shape.numShapes(), 1);
    EXPECT_EQ(shape.maskName(0, 0), "sécond");
    EXPECT_EQ(shape.numContourCC(0), 1);
    EXPECT_EQ(shape.numValidContourMasks(), 1u);
    EXPECT_EQ(builder.make()->currentLayer()->activeContours().size(), 1);

    // Copies and sums share nothing.
    ExportedShape const copy = shape;
    shape.maskShape(0, 0)[0]->time = 77;
    EXPECT_EQ(copy.maskShape(0, 0)[0]->time, 0);
    shape += copy;
    shape += shape;
    EXPECT_EQ(shape.numContours(), 4);
    copy.maskShape(0, 0)[0]->closed = false;
    EXPECT_TRUE(shape.maskShape(1, 0)[0]->closed);
    shape = copy;
    EXPECT_EQ(shape.numContours(), 1);
    EXPECT_NE(shape.maskShape(0, 0)[0].get(), copy.maskShape(0, 0)[0].get());
    EXPECT_THROW(shape.maskShape(1, 0), std::out_of_range);
    EXPECT_THROW(shape.blurShape(0, 1), std::out_of_range);
    EXPECT_THROW(shape.numContourCC(-1), std::out_of_range);
}

TEST(Shapes, InPixelsOfTheirOwnFramesAreSeenThere)
{
    ProjectBuilder builder = triangleProject(9);
    builder.model.views = QStringList{"left", "right"};
    builder.track([](int frame) { return tilted(frame, -1e-4); });
    builder.track([](int) { return ProjectBuilder::translation(500, 0); }, "right");
    builder.layer().adjust = {{1, {4, 0, 0, -3, 2, 2, 0, 5}}};
    builder.layer().contours = {bezier({{2, triangle(100), triangle(90)}, {6, triangle(140, 30), {}}}),
                                xspline({{5, {31, 77, 0.5, 130, 90, -1, 99, 155, 1}, {}}})};
    for (MarloHost::ContourModel& contour : builder.layer().contours)
    {
        contour.inImage = true;
    }
    ExportedShape const shape = shapeOf(builder, 0, 8, 1 + 8);
    std::vector<double> const given[] = {triangle(100), triangle(90), triangle(140, 30)};
    for (int i = 0; i < 9; ++i)
    {
        auto const& curves = i / 3 == 1 ? shape.blurShape(0, 0) : shape.maskShape(0, 0);
        Sabrel::BezierSpan const& span = bezierAt(curves, i / 3 == 2 ? 6 : 2)[i % 3];
        double const* const numbers = &given[i / 3][i % 3 * 6];
        EXPECT_POINT(span.start, {numbers[0], numbers[1]}, 1e-9);
        EXPECT_POINT(span.control1, {numbers[4], numbers[5]}, 1e-9);
    }
    auto const& spline = dynamic_cast<Korvane::ExportXSplineCurve const&>(*shape.maskShape(1, 0)[5]);
    EXPECT_POINT(spline.point(1), {130, 90}, 1e-9);
}

TEST(Shapes, ControlPointsAreWhereTheyAreSeen)
{
    ProjectBuilder builder = triangleProject(5);
    builder.layer().contours = {bezier({{0, triangle(100), {}}, {4, triangle(140), {}}})};
    // At frame 3 the line x = 250 goes to infinity, behind the surface.
    builder.layer().corners = {100, 40, 200, 40, 100, 160, 200, 160};
    builder.track(
        [](int frame)
        {
            return frame == 3 ? Matrix{-1, 0, 0, 0, -1, 0, 1.0 / 250, 0, -1}
                              : ProjectBuilder::translation(10 * frame, 4 * frame);
        });
    auto const project = builder.make();
    Korvane::Contour const& contour = *project->currentLayer()->activeContours().front();
    ASSERT_EQ(contour.allPoints().size(), 3u);
    ZN::TrackCache cache;
    struct Case
    {
        std::size_t point;
        int frame;
        bool inPlane;
        double x, y;
        bool usable;
    };
    for (Case const& wanted :
         {Case{0, 2, false, 140, 58, true}, Case{1, 2, false, 340, 58, true}, Case{0, 2, true, 120, 50, true},
          Case{1, 3, true, 330, 50, true}, Case{0, 3, false, 130 / 0.48, 50 / 0.48, true},
          Case{1, 3, false, 330 / -0.32, 50 / -0.32, false}, Case{2, 1, false, 120, 154, true}})
    {
        for (ZN::TrackCache* const maybe : {&cache, static_cast<ZN::TrackCache*>(nullptr)})
        {
            double x = 0;
            double y = 0;
            bool usable = false;
            contour.vGetControlPointXY(*contour.allPoints()[wanted.point], contextAt(wanted.frame), wanted.inPlane,
                                       false, x, y, usable, maybe);
            EXPECT_NEAR(x, wanted.x, 1e-9) << "frame " << wanted.frame;
            EXPECT_NEAR(y, wanted.y, 1e-9) << "frame " << wanted.frame;
            EXPECT_EQ(usable, wanted.usable) << "frame " << wanted.frame;
        }
    }
}

TEST(Shapes, OutlineTextsAreReadBackAndInterpolatedLikeTheContour)
{
    for (bool const interlaced : {false, true})
    {
        ProjectBuilder builder = triangleProject(11);
        builder.clip().interlaced = interlaced;
        builder.track([](int frame) { return tilted(frame, 2e-5); });
        builder.layer().contours = {bezier({{2, triangle(100), triangle(90)}, {8, triangle(140, 30), {}}}),
                                    xspline({{4, {10, 20, -0.5, 200, 10, 1, 150, 90, 0}, {}}})};
        auto const project = builder.make();
        KORV_Layer const& layer = *project->currentLayer();
        auto const motion = Korvane::ShapeExportHelper::buildHomogMap(*project, layer, Anm::View::defaultView());
        ASSERT_EQ(motion->size(), 11);
        std::set<Anm::Context> const ends{contextAt(0), contextAt(8), contextAt(10)};
        QSize const size(400, 200);
        auto const texts = layer.activeContours()[0]->getShapeKeyframesAsStrings(project.get(), size, *motion,
                                                                                 Anm::View::defaultView(), ends);
        QList<Anm::Context> const times = texts.keys();
        ASSERT_EQ(times, (QList<Anm::Context>{contextAt(0), contextAt(2), contextAt(8), contextAt(10)}));

        ExportedShape const baked = shapeOf(builder, 0, 10, 1 + 8);
        for (int frame = 0; frame <= 10; ++frame)
        {
            int const before = frame < 2 ? 0 : frame < 8 ? 1 : 2;
            Outline const seen = interpolated(texts[times[before]], texts[times[before + 1]], *motion,
                                              times[before].frameValue(), times[before + 1].frameValue(), frame);
            ASSERT_TRUE(seen.closed);
            for (int edge = 0; edge < 2; ++edge)
            {
                auto const& curves = edge == 0 ? baked.maskShape(0, 0) : baked.blurShape(0, 0);
                Korvane::ExportBezierCurve const& curve = bezierAt(curves, frame);
                for (std::size_t vertex = 0; vertex < 3; ++vertex)
                {
                    double const* const numbers = &seen.edges[static_cast<std::size_t>(edge)][vertex * 6];
                    Mtx_Vector2 const at{numbers[0] * 400, numbers[1] * 200};
                    Mtx_Vector2 const leaves{numbers[4] * 400, numbers[5] * 200};
                    // Six digits of up to 1 are half a thousandth of these pixels, times what the
                    // perspective adds.
                    EXPECT_POINT(at, curve[vertex].start, 2e-3);
                    EXPECT_POINT(leaves, curve[vertex].control1, 4e-3);
                }
            }
        }
        // An X-spline is the Bezier curve that other targets get too.
        auto const spline = layer.activeContours()[1]->getShapeKeyframesAsStrings(
            project.get(), size, *motion, Anm::View::defaultView(), {contextAt(0), contextAt(10)});
        ASSERT_EQ(spline.keys(), (QList<Anm::Context>{contextAt(0), contextAt(4), contextAt(10)}));
        ExportedShape const bakedSpline = shapeOf(builder, 0, 10, 1 + 2);
        for (int const frame : {0, 4, 10})
        {
            Outline const seen = parseOutline(spline[contextAt(frame)]);
            Korvane::ExportBezierCurve const& curve = bezierAt(bakedSpline.maskShape(1, 0), frame);
            ASSERT_EQ(seen.edges[0].size(), 6 * static_cast<std::size_t>(curve.numSpans()));
            for (std::size_t vertex = 0; vertex * 6 < seen.edges[0].size(); ++vertex)
            {
                double const* const numbers = &seen.edges[0][vertex * 6];
                EXPECT_POINT((Mtx_Vector2{numbers[0] * 400, numbers[1] * 200}), curve[vertex].start, 2e-3);
                EXPECT_POINT((Mtx_Vector2{numbers[4] * 400, numbers[5] * 200}), curve[vertex].control1, 4e-3);
            }
        }
    }
}

TEST(Shapes, TextsAndMotionCoverTheLayerHoweverLongItsClipIs)
{
    ProjectBuilder builder = triangleProject();
    builder.clip().frameCount = 10000000;
    builder.range(9999990, 9999999).track([](int frame) { return ProjectBuilder::translation(frame - 9999990, 0); });
    builder.layer().contours = {
        bezier({{3, triangle(), {}}, {9999995, triangle(), {}}}),
        xspline({{3, {0, 0, 1, 90, 0, 1, 0, 90, 1}, {}}, {9999995, {0, 0, 0, 90, 0, 1, 0, 90, 1}, {}}})};
    auto const project = builder.make();
    KORV_Layer const& layer = *project->currentLayer();
    Anm::View const view = Anm::View::defaultView();
    auto const motion = Korvane::ShapeExportHelper::buildHomogMap(*project, layer, view);
    ASSERT_EQ(motion->size(), 10);
    EXPECT_EQ(motion->last().homography.m[2], 9);
    for (auto const& contour : layer.activeContours())
    {
        auto const texts =
            contour->getShapeKeyframesAsStrings(project.get(), {400, 200}, *motion, view, {contextAt(9999990)});
        EXPECT_EQ(texts.keys(), (QList<Anm::Context>{contextAt(9999990), contextAt(9999995)}));
    }
}

TEST(Shapes, ComponentsPutTogetherAreTheHomography)
{
    ProjectBuilder builder(40, 1920, 1080);
    builder.addLayer("A");
    builder.track(
        [](int frame)
        {
            // 450 degrees in all, sheared, with perspective, and a mirror at the end.
            Matrix h = ProjectBuilder::similarity(960, 540, frame * 0.2, std::pow(1.03, frame), 7 * frame, -3 * frame);
            h[1] += 0.01 * frame;
            h[6] = 1e-6 * frame;
            h[7] = -2e-6 * frame;
            for (double& entry : h)
            {
                entry *= frame % 2 ? -3 : 0.5;
            }
            return frame == 39 ? Matrix{-1, 0, 1920, 0, 1, 0, 0, 0, 1} : h;
        });
    builder.layer().tracks[0].frames.erase(builder.layer().tracks[0].frames.begin() + 20);
    auto& numbers = builder.layer().tracks[0].homographies;
    numbers.erase(numbers.begin() + 180, numbers.begin() + 189);
    auto const project = builder.make();
    auto const map =
        Korvane::ShapeExportHelper::buildHomogMap(*project, *project->currentLayer(), Anm::View::defaultView());
    ASSERT_EQ(map->size(), 40);
    auto const parts = Korvane::ShapeExportHelper::buildComponentsList(map, 42);
    ASSERT_EQ(parts.size(), 42);
    for (int frame = 0; frame < 40; ++frame)
    {
        auto const& p = parts[frame];
        auto const& found = map->value(contextAt(frame));
        EXPECT_EQ(found.width, 1920);
        EXPECT_EQ(found.height, 1080);
        std::array<double, 9> const& h = found.homography.m;
        double const c = std::cos(p.rotation);
        double const s = std::sin(p.rotation);
        double const a[] = {p.scale * (1 + p.shearX), p.scale * p.shearY, p.scale * (1 - p.shearX)};
        // In 0 to 1 of the picture.
        double const together[] = {c * a[0] - s * a[1], c * a[1] - s * a[2], p.translationX,
                                   s * a[0] + c * a[1], s * a[1] + c * a[2], p.translationY,
                                   p.perspectiveX,      p.perspectiveY,      1};
        double const size[] = {1920, 1080, 1};
        for (std::size_t i = 0; i < 9; ++i)
        {
            EXPECT_NEAR(together[i], h[i] / h[8] * size[i % 3] / size[i / 3], 1e-9)
                << "frame " << frame << " entry " << i;
        }
        if (frame > 0 && frame < 39)
        {
            EXPECT_NEAR(p.rotation - parts[frame - 1].rotation, frame == 20 ? 0 : frame == 21 ? 0.4 : 0.2, 0.05);
        }
    }
    EXPECT_EQ(parts[20].rotation, parts[19].rotation) << "of two equally near frames the earlier";
    EXPECT_EQ(parts[41].scale, 1);
    // A layer without a track stands still.
    builder.layer().tracks.clear();
    auto const still = builder.make();
    auto const rest = Korvane::ShapeExportHelper::buildHomogMap(*still, *still->currentLayer(), Anm::View(0));
    EXPECT_EQ(rest->value(contextAt(30)).homography, Sabrel::Matrix33());
}

TEST(Shapes, ContoursRideOnTheAdjustedSurface)
{
    ProjectBuilder builder = triangleProject(5);
    builder.layer().adjust = {{0, {}}, {4, {8, -4, 0, 0, 0, 0, 4, 16}}};
    // Vertices in two corners of the surface move by just what the user moved those.
    builder.layer().contours = {bezier({{0, {100, 40, 0, 0, 0, 0, 300, 160, 0, 0, 0, 0, 300, 40, 0, 0, 0, 0}, {}}})};
    ExportedShape const shape = shapeOf(builder, 0, 4, 1);
    for (int frame = 0; frame <= 4; ++frame)
    {
        Korvane::ExportBezierCurve const& curve = bezierAt(shape.maskShape(0, 0), frame);
        EXPECT_POINT(curve[0].start, {100.0 + 12 * frame, 40.0 + 3 * frame}, 1e-9);
        EXPECT_POINT(curve[1].start, {300.0 + 11 * frame, 160.0 + 8 * frame}, 1e-9);
        EXPECT_POINT(curve[2].start, {300.0 + 10 * frame, 40.0 + 4 * frame}, 1e-9);
    }
}

class WarningList : public Korvane::Callbacks
{
public:
    KORV_MESSAGEBOX_REPLY warning(std::string const& title, std::string const& text,
                                  KORV_MESSAGEBOX_STYLE) const override
    {
        lines.push_back(title + ": " + text);
        return KORV_MESSAGEBOX_REPLY_OK;
    }

    mutable std::vector<std::string> lines;
};

TEST(Shapes, OfAnUntrackedEyeCoverTheLayerAndSaySo)
{
    ProjectBuilder builder = triangleProject(9);
    builder.model.views = QStringList{"left", "right"};
    builder.range(2, 6);
    builder.layer().contours = {bezier({{2, triangle(100), {}}, {6, triangle(140), {}}})};
    auto const warnings = std::make_shared<WarningList>();
    MarloHost::HostServices services;
    services.callbacks = warnings;
    auto const project = builder.make({}, services);
    KORV_Layer const& layer = *project->currentLayer();
    Anm::View const left(0);
    Anm::View const right(1);
    Korvane::TrackingExporterHelper helper;
    Anm::Time const whole = Anm::Time::fromInt(2147483647);
    helper.initialiseWithPMAndRange(*project, 1, right, 0, Anm::Time::fromInt(-2147483647), whole, false);
    EXPECT_EQ(helper.firstFrame().value(), 2);
    EXPECT_EQ(helper.lastFrame().value(), 6);

    ExportedShape const baked(*project, 2, 6, layer, right, 1, 1, {}, true);
    ASSERT_EQ(baked.maskShape(0, 0).size(), 5);
    EXPECT_POINT(bezierAt(baked.maskShape(0, 0), 3)[0].start, {130, 50}, 1e-9);
    ExportedShape const apart(*project, 2, 6, layer, right, 1 + 4, 1, {}, true);
    EXPECT_EQ(apart.transform(0, 0)[4].m, (std::array<double, 9>{1e6, 0, 0, 0, 1e6, 0, 0, 0, 1e6}));
    Korvane::ShapeExportHelper::buildHomogMap(*project, layer, right);
    Korvane::ShapeExporter::Options options;
    options.layerExportMode = ZN::AllLayers;
    options.views = {left, right};
    Korvane::GlimmersetShapeExporter().exportShape(*project, "a.fxs", {}, options);
    std::string const line =
        "Layer \"A\": no tracking data in view \"right\", its contours move by their own keys alone";
    EXPECT_EQ(warnings->lines, std::vector<std::string>(4, line));
    ExportedShape(*project, 2, 6, layer, left, 1, 1, {}, true);
    EXPECT_EQ(warnings->lines.size(), 4u);
}

TEST(Meshes, FollowTheUsersCorrectionsAndHoldTheNearestFrame)
{
    ProjectBuilder builder = triangleProject(8);
    builder.model.views = QStringList{"left", "right", "third"};
    builder.track([](int frame) { return ProjectBuilder::translation(frame, 0); }, "right");
    MarloHost::MeshModel mesh;
    mesh.vertexCount = 3;
    mesh.faceCounts = {3};
    mesh.faceIndices = {0, 1, 2};
    mesh.tracks = {{"", {1, 2, 6}, {100, 40, 300, 40, 50, 60, 110, 44, 310, 44, 60, 64, 160, 64, 360, 64, 110, 84}},
                   {"right", {3}, {1, 2, 3, 4, 5, 6}}};
    builder.layer().mesh = mesh;
    auto const position = [&](std::size_t vertex, int frame, int view)
    {
        auto const project = builder.make();
        auto const set = project->currentLayer()->trackMesh();
        EXPECT_EQ(set->faceIndices(), mesh.faceIndices);
        Mtx_Vector2_f at =
            set->vertices().at(vertex).pos(Anm::Context(Anm::Time::fromDouble(frame + 0.5), Anm::View(view)));
        ZN::NormalizedSpace(QSize(400, 200)).toImage(at);
        return Mtx_Vector2{at.x, at.y};
    };
    EXPECT_POINT(position(2, 0, 0), {50, 60}, 1e-4);
    EXPECT_POINT(position(1, 2, 0), {310, 44}, 1e-4);
    EXPECT_POINT(position(1, 4, 0), {310, 44}, 1e-4);
    EXPECT_POINT(position(1, 5, 0), {360, 64}, 1e-4);
    EXPECT_POINT(position(1, 0, 1), {3, 4}, 1e-4);
    EXPECT_POINT(position(1, 2, 2), {310, 44}, 1e-4) << "a view without a track";

    // At frame 2 the first vertex was seen just where the track has the lower left corner
    // (two frames of 10 and 4 pixels from where the surface was drawn).
    builder.layer().corners = {90, 36, 300, 40, 100, 160, 300, 160};
    builder.layer().adjust = {{2, {5, 6, 0, 0, 0, 0, 0, 0}}};
    EXPECT_POINT(position(0, 2, 0), {115, 50}, 1e-4);
    EXPECT_POINT(position(0, 3, 0), {115, 50}, 1e-4) << "held with the corrections of its own frame";
    builder.layer().mesh.reset();
    EXPECT_EQ(builder.make()->currentLayer()->trackMesh(), nullptr);
}

TEST(Shapes, AProjectOfThisHostRefusesViewsThatItDoesNotHave)
{
    ProjectBuilder builder = triangleProject();
    builder.layer().mesh = MarloHost::MeshModel{3, {3}, {0, 1, 2}, {{"nowhere", {0}, {0, 0, 1, 0, 0, 1}}}};
    EXPECT_THROW(builder.make(), KORV_BadArgument);
}

}
