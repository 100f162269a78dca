// Glimmerset shapes of layers on different clips, in several views.

#include "ProjectBuilder.h"

#include "Host/ShapeExporter.h"

#include <gtest/gtest.h>

#include <QXmlStreamReader>

namespace
{

/// What stands in the document of a layer: some of its attributes, then for each view the x by which it moves.
QStringList summary(QByteArray const& document)
{
    QStringList layers;
    QXmlStreamReader xml(document);
    while (!xml.atEnd())
    {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == QLatin1String("layer"))
        {
            auto const attributes = xml.attributes();
            layers.append(QString("%1 on %2, %3 x %4")
                              .arg(attributes.value("name"), attributes.value("clip"), attributes.value("width"),
                                   attributes.value("height")));
        }
        else if (xml.isStartElement() && xml.name() == QLatin1String("motion"))
        {
            layers.back() += ", " + xml.attributes().value("view") + ":";
        }
        else if (xml.isStartElement() && xml.name() == QLatin1String("homography"))
        {
            layers.back() += " " + xml.readElementText().section(' ', 2, 2);
        }
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    return layers;
}

TEST(Fxs, EachLayerHasItsOwnClipAndAMotionForEachView)
{
    ProjectBuilder builder(2, 400, 200);
    MarloHost::ClipModel second = builder.clip();
    second.name = "second";
    second.width = 640;
    second.height = 360;
    builder.model.clips.push_back(second);
    builder.model.views = QStringList{"left", "right"};
    for (auto const& [name, clip, speed] : {std::tuple("A", "clip", 1), std::tuple("B", "second", 3)})
    {
        builder.addLayer(name).layer().clip = clip;
        builder.track([&, by = speed](int frame) { return ProjectBuilder::translation(by * frame, 0); });
        builder.track([&, by = speed](int frame) { return ProjectBuilder::translation(10 * by * frame, 0); }, "right");
    }
    auto const project = builder.make();
    Korvane::ShapeExporter::Options options;
    options.layerExportMode = ZN::AllLayers;
    options.views = {Anm::View(0), Anm::View(1)};
    auto const files = Korvane::GlimmersetShapeExporter().exportShape(*project, "a.fxs", {}, options);
    EXPECT_EQ(summary(files->value("a.fxs")), QStringList({"A on clip, 400 x 200, left: 0 1, right: 0 10",
                                                           "B on second, 640 x 360, left: 0 3, right: 0 30"}));
}

}
