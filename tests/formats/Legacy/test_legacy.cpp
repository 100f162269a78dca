// Edge cases of what is written for Shake and Avid DS.

#include "Host/ExportedShape.h"
#include "Host/KORV_Exception.h"
#include "Legacy/KORV_AvidDSExporter.h"
#include "Legacy/KORV_ShakeSSFRotoShapeExporter.h"
#include "Legacy/KORV_ShakeScriptExporter.h"
#include "ProjectBuilder.h"

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <boost/make_shared.hpp>

#include <dlfcn.h>

#include <cmath>
#include <limits>
#include <stdexcept>

using namespace Export;

namespace
{

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

Korvane::ExportedFiles run(Korvane::TrackingExporter const& exporter, ProjectBuilder const& builder,
                           QString const& path = "a")
{
    return exporter.exportTracking(*builder.make(), path, 1, Anm::Context(Anm::Time::fromInt(1), Anm::View(0)), {});
}

ProjectBuilder fields()
{
    ProjectBuilder builder(4);
    builder.clip().interlaced = true;
    builder.clip().frameOffset = -2;
    builder.clip().footage = {MarloHost::FootageModel::Sequence, "/plates", "sign.", ".dpx", 4, 86, {}};
    builder.addLayer(QString::fromUtf8("2 Grün-%1"), {100, 50, 200, 50, 100, 100, 200, 100}).range(1, 3);
    builder.track([](int frame) { return ProjectBuilder::translation(frame == 2 ? NOT_A_NUMBER : frame, 0); });
    return builder;
}

/// How many arguments each call has.
QList<int> argumentCounts(QString script)
{
    script.replace(QRegularExpression("Linear\\([^)]*\\)"), "curve");
    QList<int> counts;
    auto calls = QRegularExpression(" = \\w+\\(([^)]*)\\);").globalMatch(script);
    while (calls.hasNext())
    {
        counts += calls.next().captured(1).count(',') + 1;
    }
    return counts;
}

MarloHost::ContourModel triangle(QString const& name, int frame, double x = 100)
{
    return {name, false, true,
            true, {},    {{frame, {x, 10, -1, 0, 1, 0, 200, 10, 0, 0, 0, 0, 150, 90, 2, 1, -2, -1}, {}}}};
}

struct Shapes
{
    QString text;
    QString failure;

    QStringList values(QString const& word) const
    {
        QStringList found;
        for (QString const& line : text.split('\n'))
        {
            found += line.startsWith(word + ' ') ? QStringList(line.mid(word.size() + 1)) : QStringList();
        }
        return found;
    }
};

Shapes runShapes(ProjectBuilder const& builder)
{
    Korvane::ShapeExporter::Options options;
    options.layerExportMode = ZN::AllLayers;
    auto const files = KORV_ShakeSSFRotoShapeExporter().exportShape(*builder.make(), "a", {}, options);
    return {files->value("a"), files->value(Korvane::ShapeExporter::ERROR_FILENAME)};
}

bool contoursAreXSplines = false;

}

// The reference host gives no X-splines here, so its function is replaced in this program: the dynamic linker
// finds this body first.
Korvane::ExportedShape::Curves const& Korvane::ExportedShape::maskShape(int contour, int part) const
{
    using Body = Curves const& (*)(ExportedShape const*, int, int);
    static auto const body = reinterpret_cast<Body>(dlsym(RTLD_NEXT, "_ZNK7Korvane13ExportedShape9maskShapeEii"));
    static Curves const splines{
        boost::make_shared<ExportXSplineCurve>(0, true, std::vector<ExportXSplineCurve::Point>(3))};
    return contoursAreXSplines ? splines : body(this, contour, part);
}

TEST(ShakeScript, NamesFieldsFileNumbersAndKeysWithoutAFinitePoint)
{
    auto const result = run(KORV_ShakeScriptExporter(), fields());
    EXPECT_EQ(result.failedCount, 4) << "corners, not their places in the three nodes";
    for (char const* part :
         {"file numbers 86-87 in", "dimensions 1920x540\n", "\n_2_Gr_n__1CornerPin = CornerPin(0,\n",
          "   Linear(0,101@-0.5,103@0.5),\n   Linear(0,50@-0.5,50@0.5),\n", " 0.5, 0, -0.5, 1, 0, 1, \"v2.0\""})
    {
        EXPECT_TRUE(result.files.value("a").contains(part)) << part;
    }
    EXPECT_EQ(argumentCounts(result.files.value("a")), QList<int>({18, 86, 76}));
}

TEST(ShakeShape, ShapesShareTheirKeysAndHoldWhatIsNotFinite)
{
    ProjectBuilder builder(4);
    builder.clip().frameOffset = 1000002;
    builder.addLayer("A").range(0, 1);
    builder.track([](int) { return ProjectBuilder::identity(); });
    builder.layer().contours = {triangle("left eye", 0)};
    builder.addLayer("B").range(1, 2);
    builder.track([](int frame) { return ProjectBuilder::translation(frame == 2 ? NOT_A_NUMBER : 0.00001, 1e12); });
    builder.layer().contours = {triangle("b", 1), triangle("c", 1)};
    Shapes const shapes = runShapes(builder);
    EXPECT_EQ(shapes.values("num_shapes"), QStringList("3"));
    EXPECT_EQ(shapes.values("shape_name"), QStringList({"left eye", "b", "c"}));
    EXPECT_EQ(shapes.values("num_key_times"), QStringList({"3", "3", "3"}));
    EXPECT_EQ(shapes.values("key_time").mid(3, 3), QStringList({"1000002", "1000003", "1000004"}));
    EXPECT_EQ(shapes.failure, "2 keys hold the one before, as their values aren't finite");
    QStringList const vertices = shapes.values("vertex_data");
    EXPECT_TRUE(vertices[0].startsWith("100.0000 10.0000 99.0000 10.0000 101.0000 10.0000 100.0000 10.0000 "));
    EXPECT_EQ(vertices[5], vertices[4]);
    EXPECT_TRUE(vertices[4].startsWith("100.0000 999999995904.0000 ")) << "a float, and no exponent";
    for (QString const& line : vertices)
    {
        EXPECT_EQ(line.split(' ').size(), 36) << line.toStdString();
    }
}

TEST(ShakeShape, KeysOfFieldsAreHalvesAndTheCentreIsThatOfAllPoints)
{
    ProjectBuilder builder(2);
    builder.clip().interlaced = true;
    builder.addLayer("A").layer().contours = {triangle("a", 0)};
    builder.layer().contours[0].keys[0].feather = {100, 10, -50, 0, 1, 0, 200, 10, 0, 0, 0, 0, 150, 200, 2, 1, -2, -1};
    Shapes const shapes = runShapes(builder);
    EXPECT_EQ(shapes.values("key_time"), QStringList({"0", "0.5"}));
    EXPECT_EQ(shapes.values("center_x"), QStringList({"125.0000", "125.0000"})) << "50 to 200";
    EXPECT_EQ(shapes.values("center_y"), QStringList({"211.0000", "211.0000"})) << "20 to 402, whole lines";
}

TEST(ShakeShape, OfXSplinesAndWithoutAnyFiniteKeyIsRefused)
{
    ProjectBuilder builder(1);
    builder.addLayer("A").layer().contours = {triangle("a", 0)};
    contoursAreXSplines = true;
    EXPECT_THROW(runShapes(builder), std::logic_error);
    contoursAreXSplines = false;
    builder.layer().contours = {triangle("a", 0, NOT_A_NUMBER)};
    EXPECT_THROW(runShapes(builder), KORV_OperationFailed);
}

TEST(AvidDS, HasAKeyForEachFrameInSecondsAndSquareLines)
{
    ProjectBuilder builder = fields();
    builder.model.frameRate = 25;
    builder.model.clips.push_back(builder.clip());
    builder.model.clips[1].name = "shown";
    builder.model.clips[1].pixelAspect = 1.25;
    builder.model.displayClip = "shown";
    auto const result = run(KORV_AvidDSExporter(), builder, "/a/pin.text");
    EXPECT_EQ(result.files.keys(),
              QStringList({"/a/pin_R1x.fraw", "/a/pin_R1y.fraw", "/a/pin_R2x.fraw", "/a/pin_R2y.fraw",
                           "/a/pin_R3x.fraw", "/a/pin_R3y.fraw", "/a/pin_R4x.fraw", "/a/pin_R4y.fraw"}));
    EXPECT_EQ(result.files["/a/pin_R2x.fraw"], "3 20\n0.02 201 0.000000 0.000000\n0.04 201 0.000000 0.000000\n"
                                               "0.06 203 0.000000 0.000000\n");
    EXPECT_EQ(result.files["/a/pin_R3y.fraw"].split('\n')[3], "0.06 160 0.000000 0.000000") << "100 times 2 / 1.25";
    EXPECT_EQ(result.failedCount, 4) << "a line that holds the one before, for each corner";
}

TEST(AvidDS, WithoutAFiniteFrameCurvesAreEmpty)
{
    ProjectBuilder untracked(2);
    untracked.addLayer("A").layer().tracks.clear();
    ProjectBuilder broken(2);
    broken.addLayer("A").track([](int) { return ProjectBuilder::translation(0, NOT_A_NUMBER); });
    for (ProjectBuilder const& builder : {untracked, broken})
    {
        auto const result = run(KORV_AvidDSExporter(), builder, "a");
        EXPECT_EQ(result.files.size(), 8);
        EXPECT_EQ(result.files.value("_R4x.fraw"), "0 20\n");
        EXPECT_FALSE(result.failedCount == 0 && result.messages.isEmpty());
    }
}
