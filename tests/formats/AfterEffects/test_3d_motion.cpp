// Camera solves as 3D motion text: features on request, eyes of a rig, and what the user is told.

#include "AfterEffects/AE3DMotionExporter.h"
#include "Host/KORV_Exception.h"
#include "OtherProgram.h"
#include "ProjectBuilder.h"

#include <gtest/gtest.h>

#include <QMap>
#include <QVariant>

#include <any>

using namespace Export;

namespace
{

// A picture of 200 x 100 pixels whose focal length is as long as its film back is wide, so
// that a scene unit is 200 pixels; the camera has its first sample at (1, 2, 3), turned.
ProjectBuilder scene()
{
    ProjectBuilder builder(2, 200, 100);
    MarloHost::SolveModel solve;
    solve.camera.pose.frames = {0, 1};
    solve.camera.pose.positions = {1, 2, 3, 1.5, 2, 3};
    solve.camera.pose.rotations = {0, 30, 0, 0, 45, 0};
    solve.camera.focalLength.value = 36;
    builder.model.solve = solve;
    return builder;
}

MarloHost::PointCloudModel pointAt(double x, QString const& name)
{
    MarloHost::PointCloudModel cloud;
    cloud.positions = {x, 0, 0};
    cloud.names = QStringList{name};
    return cloud;
}

Korvane::ExportedFiles run(AE3DMotionExporter const& exporter, KORV_ProjectManager& project,
                           std::any const& customData = {},
                           std::vector<Anm::View> const& views = {Anm::View::defaultView()})
{
    KV::ExportSpec spec;
    spec.layers = KV::Layers::FilterByPoints();
    spec.views = views;
    spec.customData = customData;
    return exporter.exportCameraSolve(project, "out.txt", spec, KV::CameraSolveExporter::AllObjects);
}

QString textOf(ProjectBuilder const& builder, AE3DMotionExporter const& exporter = AE3DMotionExporter(2.0F),
               std::any const& customData = {})
{
    return QString::fromUtf8(run(exporter, *builder.make(), customData).files.value("out.txt"));
}

QStringList documentsOf(QString const& text)
{
    return text.split("Adobe After Effects 6.0 Keyframe Data\n").mid(1);
}

// The rows of a block, without its column titles.
QStringList rows(QString const& document, QString const& title)
{
    int const at = document.indexOf("\n" + title + "\n");
    if (at < 0)
    {
        return {};
    }
    QString const block = document.mid(at + title.size() + 2);
    return block.left(block.indexOf("\n\n")).split('\n').mid(1);
}

TEST(Motion3D, FeaturesAreLeftOutOnRequest)
{
    ProjectBuilder builder = scene();
    builder.model.solve->features.push_back({"set", QString(), false, false, pointAt(1, "Feature")});
    QString const key = KV::CameraSolveExporter::UI().includeFeatures.key;
    using Map = QMap<QString, QVariant>;
    AE3DMotionExporter const exporter(2.0F);
    for (auto const& [customData, included] :
         {std::pair(std::any(), true), std::pair(std::any(Map{{key, true}}), true),
          std::pair(std::any(Map{{key, false}}), false), std::pair(std::any(Map()), false)})
    {
        EXPECT_EQ(textOf(builder, exporter, customData).contains("*NullObject: Feature"), included);
    }
    EXPECT_THROW(textOf(builder, exporter, 17), std::bad_any_cast);

    builder.model.solve->legacy = true;
    EXPECT_FALSE(textOf(builder).contains("Feature"));
}

TEST(Motion3D, AStereoPairIsExportedOneEyeAtATimeInCentimetres)
{
    ProjectBuilder builder = scene();
    builder.model.views = QStringList{"left", "right"};
    builder.model.solve->stereo = MarloHost::StereoModel();
    AE3DMotionExporter const exporter(2.0F);
    QString const camera = documentsOf(textOf(builder, exporter)).value(0);
    EXPECT_EQ(rows(camera, "Transform\tPosition"),
              (QStringList{"\t0\t20000\t-40000\t-60000", "\t1\t30000\t-40000\t-60000"}));
    QString const mono = documentsOf(textOf(scene(), exporter)).value(0);
    EXPECT_EQ(rows(mono, "Transform\tPosition"), (QStringList{"\t0\t200\t-400\t-600", "\t1\t300\t-400\t-600"}))
        << "by the same exporter";

    auto const refused = [&](ProjectBuilder const& source, std::vector<Anm::View> const& views)
    {
        try
        {
            run(exporter, *source.make(), {}, views);
        }
        catch (KORV_OperationFailed const& failure)
        {
            return QString::fromUtf8(failure.what());
        }
        return QString();
    };
    Anm::View const left(0);
    Anm::View const right(1);
    QString const noSolution = "No 3D solution ready, please solve the scene first";
    EXPECT_EQ(refused(builder, {left, right}), noSolution);
    EXPECT_EQ(refused(builder, {}), noSolution);
    EXPECT_EQ(refused(ProjectBuilder(), {left}), noSolution);
    EXPECT_EQ(refused(builder, {right}), QString());
}

TEST(Motion3D, TellsWhatTheUserMustKnow)
{
    ProjectBuilder builder = scene();
    builder.addLayer("Wall");
    builder.layer().surfacePoints = pointAt(1, "Spot");
    builder.layer().surfacePoints->inaccurate = {0};
    Korvane::ExportedFiles const result = run(AE3DMotionExporter(2.0F), *builder.make());
    ASSERT_EQ(result.messages.size(), 1);
    EXPECT_TRUE(result.messages[0].startsWith("out.txt: ") && result.messages[0].contains("Spot"));
    EXPECT_EQ(result.failedCount, 0);
    ASSERT_EQ(result.notices.size(), 1U);
    EXPECT_EQ(result.notices[0].settingsKey, "DontShowAE3DTrackImportInfoMsg");
    EXPECT_TRUE(result.notices[0].text.startsWith("Loading 3D Motion data in After Effects requires the "));

    // Inside of Adobe's programs the importer is there.
    for (bool const adobe : {false, true})
    {
        auto const project = builder.make(QString(), insideOf(adobe));
        EXPECT_EQ(run(AE3DMotionExporter(2.0F), *project).notices.size(), adobe ? 0U : 1U);
    }
}

}
