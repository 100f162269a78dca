// Masks for Premiere: records, the tree, and what golden and reader can't reach.

#include "Host/KORV_Exception.h"
#include "Host/MessageBox.h"
#include "Premiere/PremiereShapeExporter.h"
#include "Premiere/document/Elements.h"
#include "Premiere/document/XmlBuilder.h"
#include "ProjectBuilder.h"
#include "marlohost/Services.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <limits>
#include <optional>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
using LeaksOfOthers = __lsan::ScopedDisabler;
#else
struct LeaksOfOthers
{
};
#endif

using namespace Export::Premiere;

namespace
{

Mask::Shape square()
{
    Mask::Shape shape(Mask::PenShape);
    for (auto const& [x, y] : {std::pair{0.F, 0.F}, {1.F, 0.F}, {1.F, 1.F}})
    {
        shape << Mask::Point(x, y);
    }
    return shape << Mask::Point({0, 1}, {-0.25F, 1}, {0.25F, 1.5F});
}

ProjectBuilder withContour(int vertices, double lost = 0)
{
    ProjectBuilder builder(3, 200, 100);
    builder.addLayer("Sign");
    MarloHost::ContourModel contour;
    contour.name = "edge";
    MarloHost::ContourKeyModel key;
    for (int i = 0; i < vertices; ++i)
    {
        key.points.insert(key.points.end(), {50.0 * (i % 2) + lost, 25.0 * (i / 2), 0, 0, 0, 0});
    }
    contour.keys.push_back(key);
    builder.layer().contours.push_back(contour);
    return builder;
}

std::shared_ptr<QMap<QString, QByteArray>> run(ProjectBuilder const& builder,
                                               MarloHost::HostServices const& services = {})
{
    auto const project = builder.make(QString(), services);
    ShapeExporter exporter;
    exporter.setEnvironment(std::make_shared<Export::CountingEnvironment>());
    return exporter.exportShape(*project, "out.xml", {project->toolManager()->currentLayerID()}, {});
}

TEST(PremiereRecord, ReadsBackAndDropsWhatIsShort)
{
    QByteArray const text = square().toBase64();
    QByteArray const bytes = QByteArray::fromBase64(text);
    EXPECT_TRUE(bytes.startsWith(QByteArray("kcin\0\0\0\0\4\0\0\0\0\0\0\0", 16)));
    EXPECT_EQ(bytes.size(), Mask::Shape::flattenedSize(4));
    EXPECT_EQ(Mask::Shape(text).points(), square().points());

    for (QByteArray const& broken :
         {QByteArray(), Mask::Shape(Mask::PenShape).toBase64(), bytes.left(bytes.size() - 1).toBase64(),
          QByteArray("kcin\0\0\0\0\xff\xff\xff\xff....", 16).toBase64()})
    {
        Mask::Shape shape = square();
        shape = broken;
        EXPECT_EQ(shape.shapeType(), Mask::InvalidShape);
        EXPECT_TRUE(shape.points().isEmpty());
    }
}

TEST(PremiereTime, IsCutToTicksAndEnds)
{
    EXPECT_EQ(ticks(-400000.0), -101606400000000000);
    EXPECT_EQ(ticks(1.0 / 24), 10584000000);
    EXPECT_EQ(ticks(0.9999999999999), 254015999999);
    EXPECT_GT(ticks(1e12), 9223372036854770000);
}

TEST(PremiereTree, MasksWithoutAKeyAreNeitherWrittenNorPointedTo)
{
    XmlBuilder const builder(std::make_shared<Export::CountingEnvironment>());
    QString text = "old";
    builder.masks().addMask();
    builder.toString(text);
    EXPECT_EQ(text, "");
    auto const mask = builder.masks().addMask();
    mask->addKey(1, boost::make_shared<Mask::Shape>(square()));
    builder.toString(text);
    EXPECT_EQ(text.count("<SubComponent "), 1);
    EXPECT_TRUE(text.contains("<InstanceName>marlo Mask 2</InstanceName>"));
    EXPECT_FALSE(text.contains("<Keyframes>")) << "one key doesn't vary";
    mask->addKey(1, boost::make_shared<Mask::Shape>(square()));
    mask->addKey(0.5, boost::make_shared<Mask::Shape>(square()));
    builder.toString(text);
    EXPECT_EQ(text.count(",a2Np"), 2) << "keys of one time are one";
    EXPECT_TRUE(text.contains("<Keyframes>127008000000,a2Np"));
}

TEST(PremiereMask, KeysThatAreNoAreaOrNotFiniteAreLeftOut)
{
    EXPECT_EQ(run(withContour(1))->value("out.xml"), "");
    auto const lost = run(withContour(4, std::numeric_limits<double>::infinity()));
    EXPECT_EQ(lost->value("out.xml"), "");
    EXPECT_EQ(lost->value(Korvane::ShapeExporter::ERROR_FILENAME),
              "3 keyframes were left out, as their values aren't finite");
    EXPECT_TRUE(run(withContour(4))->value("out.xml").contains("<InstanceName>Sign</InstanceName>"));
}

TEST(PremiereMask, WarnsWhereATrimmedProjectTearsOpacityFromTheOutline)
{
    struct Heard : Korvane::Callbacks
    {
        KORV_MESSAGEBOX_REPLY warning(std::string const&, std::string const& text, KORV_MESSAGEBOX_STYLE) const override
        {
            last = text;
            return KORV_MESSAGEBOX_REPLY_OK;
        }
        mutable std::string last;
    };
    for (auto const& [trim, offset] : {std::pair{1, 1001}, {1, 0}, {0, 1001}})
    {
        MarloHost::HostServices services;
        auto const heard = std::make_shared<Heard>();
        services.callbacks = heard;
        ProjectBuilder builder = withContour(4);
        builder.model.trimIn = trim;
        builder.clip().frameOffset = offset;
        QByteArray const text = run(builder, services)->value("out.xml");
        bool const isTorn = trim != 0 && offset != 0;
        EXPECT_EQ(heard->last.find("masks of \"Sign\"") != std::string::npos, isTorn);
        // Opacity starts at frame 0, or at minus 1 in the trimmed project; keys stay with it unless they are torn.
        int const start = trim ? -1 : 0;
        EXPECT_TRUE(text.contains(';' + QByteArray::number(start * ticks(1.0 / 24)) + ",100,4,")) << start;
        QByteArray const key = QByteArray::number((start + (isTorn ? offset : 0)) * ticks(1.0 / 24));
        EXPECT_TRUE(text.contains("<Keyframes>" + key + ",a2Np")) << key.constData();
    }
}

TEST(PremiereClipboard, CarriesTheDocumentUnderItsType)
{
    int argc = 1;
    char name[] = "test";
    char* argv[] = {name, nullptr};
    // Qt's platform without a display keeps its screen for ever.
    std::optional<LeaksOfOthers> ignored(std::in_place);
    QGuiApplication const application(argc, argv);
    ignored.reset();
    MarloHost::SystemClipboard clipboard;
    ShapeExporter().copyToClipboard(clipboard, QString::fromUtf8("<Grüße/>"), false);
    EXPECT_EQ(QGuiApplication::clipboard()->mimeData()->data("PProAE/Exchange/VideoComponent"), "<Gr\xC3\xBC\xC3\x9F"
                                                                                                "e/>");
}

}
