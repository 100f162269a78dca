// After Effects masks: what decides about keys, pieces, opacity and the header.

#include "AfterEffects/MarloShapeAEExporter.h"
#include "Host/Contour.h"
#include "OtherProgram.h"
#include "ProjectBuilder.h"
#include "model/Project.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include <cmath>

using namespace Export;

namespace
{

// The first and the last whole pixel that the importer can carry a point to.
constexpr double START_OF_REACH = -30000;
constexpr double END_OF_REACH = 29999;

// Two vertices in a picture of 200 x 100; outlines are texts of 0 to 1.
std::vector<double> const LENS{50, 25, -10, 0, 10, 0, 150, 75, 0, -10, 0, 10};

ProjectBuilder makeShot(int frameCount)
{
    ProjectBuilder builder(frameCount, 200, 100);
    builder.addLayer("A b %1", {50, 25, 150, 25, 50, 75, 150, 75});
    return builder;
}

void addLens(ProjectBuilder& builder, std::vector<double> const& points = LENS)
{
    builder.layer().contours.push_back({"lens", false, true, true, {}, {{0, points, {}}}});
}

QString text(KORV_ProjectManager& project)
{
    Korvane::ShapeExporter::Options options;
    options.layerExportMode = ZN::AllLayers;
    auto const files = MarloShapeAEExporter().exportShape(project, "m.shape4ae", {}, options);
    EXPECT_EQ(files->keys(), QStringList("m.shape4ae"));
    return QString::fromUtf8(files->value("m.shape4ae"));
}

QString text(ProjectBuilder const& builder, MarloHost::HostServices const& services = {})
{
    return text(*builder.make(QString(), services));
}

// Rows of a block of the mask of that number.
QStringList rows(QString const& document, char const* name, int effect = 1)
{
    QString const start = QString("\nEffects\tmarlo shape #%1\t%2\n\tFrame").arg(effect).arg(QLatin1String(name));
    int const at = document.indexOf(start);
    if (at < 0)
    {
        return {QString("no block ") + name};
    }
    QString const block = document.mid(at + start.size());
    return block.left(block.indexOf("\n\n")).split('\n').mid(1);
}

TEST(Mask, APointOutOfReachAtOneFrameBakesTheOutline)
{
    // Frame 2 has the points 40 pixels further to the right and up.
    using Matrix = ProjectBuilder::Matrix;
    Matrix const onTheWay = ProjectBuilder::translation(20, 20);
    Matrix const behindTheViewer{1, 0, 0, 0, 1, 0, -0.005, 0, 1}; // what is right of the picture
    Matrix const nowhere = ProjectBuilder::translation(std::nan(""), 0);
    struct
    {
        char const* name;
        std::size_t coordinate;
        double value;
        Matrix middle;
        bool baked;
        int outlineKeys;
    } const cases[] = {
        {"first x, within", 0, END_OF_REACH - 40, onTheWay, false, 2},
        {"first x", 0, END_OF_REACH - 40 + 1, onTheWay, true, 3},
        {"first y", 1, END_OF_REACH - 40 + 1, onTheWay, true, 3},
        {"last x", 6, END_OF_REACH - 40 + 1, onTheWay, true, 3},
        {"last y, within", 7, END_OF_REACH - 40, onTheWay, false, 2},
        {"last y", 7, END_OF_REACH - 40 + 1, onTheWay, true, 3},
        {"far below, within", 7, START_OF_REACH, onTheWay, false, 2},
        {"far below", 7, START_OF_REACH - 1, onTheWay, true, 3},
        {"behind the viewer", 6, 250, behindTheViewer, true, 3},
        {"not a number", 0, 50, nowhere, true, 2}, // the row of that frame is left out
    };
    for (auto const& [name, coordinate, value, middle, baked, outlineKeys] : cases)
    {
        SCOPED_TRACE(name);
        ProjectBuilder builder = makeShot(3);
        builder.track([&, &atOne = middle](int frame)
                      { return frame == 1 ? atOne : ProjectBuilder::translation(20 * frame, 20 * frame); });
        std::vector<double> points = LENS;
        points[coordinate] = value;
        addLens(builder, points);
        QString const document = text(builder);
        EXPECT_EQ(rows(document, "Shape data").size(), outlineKeys);
        EXPECT_EQ(rows(document, "Translation X").back(), baked ? "\t2\t0" : "\t2\t0.2");
        EXPECT_FALSE(document.contains("nan"));
    }
}

/// A contour of another host, which is exported in two pieces.
class SplitContour : public Korvane::Contour
{
public:
    explicit SplitContour(KORV_Layer const& layer) : m_layer(layer)
    {
    }

    QString const& name() const override
    {
        return m_layer.name();
    }
    KORV_Layer const& parentLayer() const override
    {
        return m_layer;
    }
    ZN_CONTOUR_MODEL eGetType() const override
    {
        return ZN_CONTOUR_BEZIER;
    }
    bool isClosed() const override
    {
        return true;
    }
    bool isVeilML(Anm::View const&) const override
    {
        return false;
    }
    std::vector<boost::shared_ptr<Korvane::ControlPoint const>> const& allPoints() const override
    {
        return m_noPoints;
    }
    void vGetControlPointXY(Korvane::ControlPoint const&, Anm::Context const&, bool, bool, double&, double&, bool&,
                            ZN::TrackCache*) const override
    {
    }
    QMap<Anm::Context, QString> getShapeKeyframesAsStrings(KORV_ProjectManager const*, QSize const&,
                                                           HomographyMap const&, Anm::View const&,
                                                           std::set<Anm::Context> const& contexts, Pieces const& pieces,
                                                           int piece) const override
    {
        return {{*contexts.begin(), pieces.data.value(piece)}};
    }
    bool exportsWhole() const override
    {
        return false;
    }
    Pieces splitForExport(Anm::Context const&, Anm::Context const&, unsigned int, unsigned int) const override
    {
        return {2, {"left", "right"}};
    }

private:
    KORV_Layer const& m_layer;
    std::vector<boost::shared_ptr<Korvane::ControlPoint const>> m_noPoints;
};

TEST(Mask, EveryPieceOfAContourIsAMask)
{
    auto const project = makeShot(1).make();
    KORV_Layer const& layer = *project->currentLayer();
    const_cast<KORV_Layer::Data&>(layer.data()).contours = {boost::make_shared<SplitContour const>(layer)};
    QString const document = text(*project);
    EXPECT_EQ(rows(document, "Shape data", 1), QStringList("\t0\tleft"));
    EXPECT_EQ(rows(document, "Shape data", 2), QStringList("\t0\tright"));
    EXPECT_EQ(document.count("Shape data"), 2);
}

TEST(Mask, OpacityIsFullFromInToOutWithKeysThatMakeTheStep)
{
    struct
    {
        int in, out, playbackIn;
        QStringList rows;
    } const cases[] = {
        {0, 9, 0, {"\t\t100"}},
        {2, 9, 2, {"\t\t100"}},
        {1, 9, 0, {"\t0\t0", "\t1\t100", "\t9\t100"}},
        {1, 8, 0, {"\t0\t0", "\t1\t100", "\t8\t100", "\t9\t0"}},
        {3, 5, 0, {"\t0\t0", "\t2\t0", "\t3\t100", "\t5\t100", "\t6\t0"}},
        {4, 8, 3, {"\t0\t0", "\t1\t100", "\t5\t100", "\t6\t0"}},
    };
    for (auto const& [in, out, playbackIn, expected] : cases)
    {
        ProjectBuilder builder = makeShot(10);
        builder.model.playbackIn = playbackIn;
        builder.range(in, out).track([](int) { return ProjectBuilder::identity(); });
        addLens(builder);
        EXPECT_EQ(rows(text(builder), "Opacity"), expected) << in << " to " << out;
    }
}

TEST(Mask, TheHeaderCountsFieldsAndHasTheSizeOfAPluginHost)
{
    EXPECT_EQ(text(makeShot(2)), "\nEnd of Keyframe Data\n") << "there is none without a mask";
    ProjectBuilder builder = makeShot(4);
    builder.clip().interlaced = true;
    builder.layer().colour = {10, 20, 30, 40};
    addLens(builder);
    addLens(builder);
    QString const alone = text(builder);
    EXPECT_TRUE(alone.contains("\tUnits Per Second\t48\n\tSource Width\t200\n\tSource Height\t100\n"));
    EXPECT_EQ(alone.count("Units Per Second"), 1);
    EXPECT_EQ(rows(alone, "Shape colour"), QStringList("\t\t40\t10\t20\t30"));
    EXPECT_TRUE(
        text(builder, insideOf(true)).contains("\tUnits Per Second\t48\n\tSource Width\t640\n\tSource Height\t480\n"));
}

}
