// Roto text: how numbers are written, slopes and lifetimes, and what of a project becomes
// which node.

#include "Host/ExportedShape.h"
#include "Host/ExporterHelper.h"
#include "Host/KORV_Exception.h"
#include "Nuke/NukeRotoExporters.h"
#include "ProjectBuilder.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

#include <cmath>
#include <random>

using namespace Export;

namespace
{

using Roto = NukeRotoExporterBase;
using Curves = Korvane::ExportedShape::Curves;
using Spans = std::vector<Sabrel::BezierSpan>;

QByteArray shortText(double value)
{
    TextBuffer text;
    Roto::appendFormattedS(text, value, ";");
    return text.bytes();
}

TEST(RotoNumbers, FiveDigitsThreeDecimalsAndASnap)
{
    struct
    {
        double value;
        char const* text;
    } const cases[] = {
        {1234.5678, "1234.6;"}, {0.123456, "0.123;"},        {3.0000001, "3;"},
        {30.5, "30.500;"},      {999.95, "999.95;"},         {12345.678, "12346;"},
        {2.4999999, "2.500;"},  {99.9996, "100.000;"}, // decimals are those of the value before it is rounded
        {0.0004, "0;"},         {0.0005, "0.001;"},          {-0.0, "0;"},
        {-0.0001, "-0;"},       {1e15, "1000000000000000;"},
    };
    for (auto const& [value, text] : cases)
    {
        EXPECT_EQ(shortText(value), text) << value;
    }
    EXPECT_EQ(Roto::digitLimit(0.05, 5, 5), 5);
    EXPECT_EQ(Roto::digitLimit(12.34567, 5, 5), 3);
    EXPECT_EQ(Roto::digitLimit(12.34567, 5, 2), 2);
    EXPECT_EQ(Roto::digitLimit(12.000004, 5, 5), 0);
    EXPECT_EQ(Roto::roundToDigit(-1.25, 1), -1.2);
}

// Close to the powers of ten, where the rounding of a logarithm decides, and all over.
TEST(RotoNumbers, AreTheTextOfQtForTheRuleAsItIsWritten)
{
    std::vector<double> values;
    for (double power = 1e-4; power < 1e7; power *= 10)
    {
        double below = power;
        double above = power;
        for (int step = 0; step < 2000; ++step)
        {
            below = std::nextafter(below, 0.0) * (step % 3 ? 1 : 1 - 1e-13);
            above = std::nextafter(above, 1e9) * (step % 3 ? 1 : 1 + 1e-13);
            values.insert(values.end(), {below, -below, above});
        }
    }
    std::mt19937 engine(1);
    std::uniform_real_distribution<double> exponent(-5, 6);
    for (int i = 0; i < 20000; ++i)
    {
        double const value = std::pow(10.0, exponent(engine)) * (i % 2 ? 1 : -1);
        values.insert(values.end(), {value, std::round(value * 16) / 16});
    }
    for (double const value : values)
    {
        double const rounded = Roto::roundToDigit(value, 3);
        double const shown = std::abs(value - rounded) < 1e-06 ? rounded : value;
        QByteArray const expected = QByteArray::number(shown, 'f', Roto::digitLimit(value, 5, 3)) + ';';
        ASSERT_EQ(shortText(value), expected) << QByteArray::number(value, 'g', 17).constData();
    }
}

TEST(RotoNumbers, KeysOfShapesAndOfMatrices)
{
    TextBuffer text;
    Roto::appendFormattedF(text, Anm::Time::fromDouble(1001), 960.0625, -0.25, 1.0 / 3);
    Roto::appendTransformBlock(text, Anm::Time::fromDouble(1001.5), 12.345678, "0 1 0 1 258 0 ");
    EXPECT_EQ(text.bytes(), "\"\" 1001 960.06 -0.250 1 0.333 1 258 0 \"\" 1001.5 12.346 0 1 0 1 258 0 ");
}

boost::shared_ptr<Korvane::ExportCurveBase> bezier(double time, Spans const& spans, bool closed = true)
{
    return boost::shared_ptr<Korvane::ExportCurveBase>(new Korvane::ExportBezierCurve(time, closed, spans));
}

Spans const LENS{{{10, 20}, {1, 2}, {-3, -4}}, {{30.5, 40.25}, {5, 6}, {-7, -8}}};
Spans const LENS_FEATHER{{{8, 20}, {1.5, 2}, {-3, -4.25}}, {{31, 40.25}, {5, 6}, {-7, -8}}};

struct Shape
{
    Curves mask{bezier(1001, LENS)};
    Curves blur{bezier(1001, LENS_FEATHER)};
    std::vector<KORV_ExportHomography> motion{};
    int first = 0;
    int last = 9;
    unsigned int leftOut = 0;

    /// In a project of ten frames that are shown from 1001 on.
    QByteArray text()
    {
        ProjectBuilder builder(10);
        builder.clip().frameOffset = 1001;
        builder.addLayer("A").range(first, last).track([](int) { return ProjectBuilder::identity(); });
        auto const project = builder.make();
        Korvane::TrackingExporterHelper helper;
        helper.initialiseWithPMAndRange(*project, project->toolManager()->currentLayerID(), Anm::View::defaultView(),
                                        2147483647, Anm::Time::fromInt(0), Anm::Time::fromInt(9), false);
        TextBuffer text;
        leftOut = NukeRotoExporter(true).shapeToStr(text, *project, "my lens", nullptr, Anm::View::defaultView(), mask,
                                                    blur, motion, helper, ZN_BLEND_ADD, false, QColor(255, 128, 0),
                                                    QColor(0, 0, 51, 10));
        return text.bytes();
    }
};

TEST(RotoShape, SlopesAreDifferencesPerFrameAndZeroWhereKeysMeet)
{
    Shape shape;
    shape.mask.clear();
    shape.blur.clear();
    Spans spans = LENS;
    double const keys[][2] = {{1001, 10}, {1003, 15}, {1003.005, 15.1}};
    for (auto const& [time, x] : keys)
    {
        spans[0].start.x = x;
        shape.mask.append(bezier(time, spans, false));
        shape.blur.append(bezier(time, spans, false));
    }
    QByteArray const text = shape.text();
    EXPECT_TRUE(text.contains(" 0 0 L 0 4096 0.5 2 0 0 \"\" 0 3 \"\" 1001 10 0 1 2.500 1 258 0 "
                              "\"\" 1003 15 2.500 1 0 1 258 0 \"\" 1003.0 15.100 0 1 0 1 258 0 10 L 0 4096"))
        << text.constData();
    EXPECT_TRUE(text.contains(" 258 0 6 0\n      }\n")) << "the last y, a blank and a 0";
}

TEST(RotoShape, LifetimeTellsWhichEndsOfTheProjectTheShapeReaches)
{
    int const cases[][3] = {{0, 9, 0}, {0, 5, 1}, {3, 3, 2}, {0, 0, 2}, {9, 9, 2}, {3, 9, 3}, {3, 5, 4}};
    for (auto const& [first, last, type] : cases)
    {
        Shape shape;
        shape.first = first;
        shape.last = last;
        QString const expected = QString(" \"ltn\" S 0 %1 \"ltm\" S 0 %2 \"ltt\" S 0 %3\n");
        EXPECT_TRUE(shape.text().contains(expected.arg(1001 + first).arg(1001 + last).arg(type).toUtf8()))
            << first << " " << last;
    }
}

TEST(RotoShape, AMatrixAloneIsTheIdentity)
{
    Shape shape;
    shape.motion = {{{1000000.5, 1, 2, 3, 4, 5, 6.123456, 0.05, 8}, 1001}};
    QByteArray const head = "      Transform2: 0 0 S 0 0 S 0 0 S 0 0 S 0 1 S 0 1 S 0 0 S 0 0 S 0 0 ";
    QByteArray const zeros = "S 0 0 S 0 0 S 0 0 S 0 0 ";
    EXPECT_TRUE(shape.text().contains(head + "S 0 1 " + zeros + "S 0 1 " + zeros + "S 0 1 " + zeros +
                                      "S 0 1 \n      Flag: 0\n"));
}

template <typename Written>
QString refusal(Written const& write)
{
    try
    {
        write();
    }
    catch (KORV_Exception const& error)
    {
        return error.message();
    }
    return {};
}

QString refusal(Shape& shape)
{
    return refusal([&] { shape.text(); });
}

TEST(RotoShape, WhatCanNotBeWrittenIsRefusedOrLeftOut)
{
    double const nan = std::nan("");
    Shape spline;
    spline.blur = {boost::shared_ptr<Korvane::ExportCurveBase>(new Korvane::ExportXSplineCurve(1001, true, {}))};
    EXPECT_EQ(refusal(spline), "X-Splines are not supported");

    Shape uneven;
    uneven.blur = {bezier(1001, {LENS[0]})};
    EXPECT_EQ(refusal(uneven), "The keys of the shape \"my lens\" differ in their vertices");
    uneven.blur.clear();
    EXPECT_EQ(refusal(uneven), "The keys of the shape \"my lens\" differ in their vertices");

    Shape broken;
    Spans spans = LENS;
    spans[1].control2.y = nan;
    broken.blur = {bezier(1001, spans)};
    EXPECT_EQ(refusal(broken), "The shape \"my lens\" has no outline with finite values");

    Shape partly;
    partly.mask.append(bezier(1002, spans));
    partly.blur.append(bezier(1002, LENS));
    EXPECT_EQ(partly.text(), Shape().text());
    EXPECT_EQ(partly.leftOut, 1u);

    // Finite, but what handles and slopes are made of isn't.
    spans[1].control2.y = -1e308;
    partly.mask.back() = bezier(1002, spans);
    EXPECT_EQ(partly.text(), Shape().text());
}

QByteArray exported(Korvane::ShapeExporter const& exporter, ProjectBuilder const& builder,
                    Korvane::ShapeExporter::Options options = {})
{
    auto const project = builder.make();
    auto const files = exporter.exportShape(*project, "out.nk", {project->toolManager()->currentLayerID()}, options);
    EXPECT_EQ(files->keys(), QStringList("out.nk"));
    return files->value("out.nk");
}

Korvane::ShapeExporter::Options allLayers(ZN::LayerExportMode mode = ZN::AllLayers)
{
    Korvane::ShapeExporter::Options options;
    options.layerExportMode = mode;
    return options;
}

/// Names of the nodes of layers, each with whether it is visible.
QStringList layers(QByteArray const& text)
{
    QStringList found;
    QRegularExpression const node("\n   NodeName: \"(.*)\" \\{\n    NodeType: 1\n    NumOf.*\n    \"vis\" S 0 (\\d) ");
    auto it = node.globalMatch(QString::fromUtf8(text));
    while (it.hasNext())
    {
        auto const match = it.next();
        found.append(match.captured(1) + ' ' + match.captured(2));
    }
    return found;
}

TEST(RotoDocument, LayersFromTheLowestUpAndTheTopmostGivesTheName)
{
    ProjectBuilder builder;
    builder.model.groups.push_back({"hidden", "", true, false, false});
    builder.addLayer("top layer").addLayer("middle").layer().group = "hidden";
    builder.addLayer("low %1").layer().hidden = true;
    QByteArray const all = exported(NukeRotoExporter(false), builder, allLayers());
    EXPECT_TRUE(all.startsWith("Roto {\n") && all.contains("\n  NumOfChildren: 3\n"));
    EXPECT_EQ(layers(all), QStringList({"low_%1 0", "middle 0", "top_layer 1"}));
    EXPECT_TRUE(all.endsWith("\n }\n}\n}\nname Roto_top_layer\n}\n"));
    QByteArray const visible = exported(NukeRotoPaintExporter(true), builder, allLayers(ZN::VisibleLayers));
    EXPECT_EQ(layers(visible), QStringList("top_layer 1"));
    QByteArray const current = exported(NukeSplineWarpExporter(), builder);
    EXPECT_EQ(layers(current), QStringList("low_%1 0"));
    EXPECT_TRUE(current.endsWith("\nname Roto_low_%1\n}\n"));
}

TEST(RotoDocument, WithoutLayersThereIsNoNodeAndWithoutAChoiceNoName)
{
    EXPECT_EQ(exported(NukeRotoExporter(false), ProjectBuilder(), allLayers()), "");
    ProjectBuilder hidden;
    hidden.addLayer("A").layer().hidden = true;
    QByteArray const text = exported(NukeRotoExporter(false), hidden, allLayers(ZN::VisibleLayers));
    EXPECT_TRUE(text.endsWith("  NumOfChildren: 0\n }\n}\n}\n}\n")) << text.constData();
}

TEST(RotoDocument, MoreThanAFileHoldsIsRefusedAlsoInParts)
{
    constexpr int FRAMES = 25000;
    for (int const layerCount : {1, 2})
    {
        ProjectBuilder builder(FRAMES);
        for (int layer = 0; layer < layerCount; ++layer)
        {
            builder.addLayer(QString::number(layer));
            std::vector<double> const points(static_cast<std::size_t>(6 * 400 / layerCount), 100.0);
            builder.layer().contours.push_back({"crowd", false, true, true, {}, {{0, points, {}}}});
        }
        EXPECT_TRUE(refusal([&] { exported(NukeRotoExporter(false), builder, allLayers()); })
                        .startsWith("The text needs more than the 2 GB that one file can hold."));
    }
}

}
