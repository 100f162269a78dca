// Tracked meshes as Alembic archives, read back by the library itself: what golden and reader
// don't reach.

#include "AlembicReading.h"
#include "Host/ExporterHelper.h"
#include "Host/KORV_Exception.h"
#include "Interchange/AlembicMeshExporter.h"
#include "Interchange/AlembicVertexTransformExporter.h"
#include "ProjectBuilder.h"

#include <gtest/gtest.h>

using namespace Export;

namespace
{

// A triangle whose second vertex is at (200 + 10 frame, 50), in three frames from 7 on.
ProjectBuilder triangle(QString const& name = "Wall")
{
    ProjectBuilder builder(3);
    builder.clip().frameOffset = 7;
    builder.addLayer(name);
    MarloHost::MeshModel mesh;
    mesh.vertexCount = 3;
    mesh.faceCounts = {3};
    mesh.faceIndices = {0, 1, 2};
    mesh.tracks.emplace_back();
    mesh.tracks[0].frames = {0, 1, 2};
    mesh.tracks[0].positions = {100, 50, 200, 50, 150, 300, 100, 50, 210, 50, 150, 300, 100, 50, 220, 50, 150, 300};
    builder.layer().mesh = mesh;
    return builder;
}

template <typename Exporter>
Korvane::ExportedFiles run(ProjectBuilder const& builder)
{
    auto const project = builder.make();
    Anm::Context const reference(Anm::Time::fromInt(0), Anm::View::defaultView());
    return Exporter().exportTracking(*project, "out.abc", project->currentLayer()->numericID(), reference, {});
}

template <typename Exporter>
OpenArchive archiveOf(ProjectBuilder const& builder)
{
    return OpenArchive(run<Exporter>(builder).files.value("out.abc"));
}

/// x of the second vertex in every frame.
std::vector<double> secondVertex(OpenArchive const& archive, std::string const& name)
{
    auto const schema = Abc::IPolyMesh(archive.top(), name).getSchema();
    std::vector<double> xs;
    for (std::size_t i = 0; i < schema.getNumSamples(); ++i)
    {
        auto const points = schema.getPositionsProperty().getValue(Abc::ISampleSelector(static_cast<Abc::index_t>(i)));
        xs.push_back(static_cast<double>((*points)[1].x));
    }
    return xs;
}

TEST(AlembicMesh, StandsInUnitsOf100PixelsAtTheNumbersThatAreShown)
{
    OpenArchive const archive = archiveOf<AlembicMeshExporter>(triangle());
    EXPECT_EQ(archive.names(), (std::vector<std::string>{"marlo-camera", "Wall"}));
    EXPECT_EQ(secondVertex(archive, "Wall"), (std::vector<double>{2.0F, 2.1F, 2.2F}));

    auto const schema = Abc::IPolyMesh(archive.top(), "Wall").getSchema();
    EXPECT_DOUBLE_EQ(schema.getTimeSampling()->getSampleTime(0), 7.0 / 24);
    EXPECT_DOUBLE_EQ(schema.getTimeSampling()->getSampleTime(2), 9.0 / 24);
    auto const faces = schema.getFaceIndicesProperty().getValue();
    EXPECT_EQ(std::vector<int>(faces->get(), faces->get() + faces->size()), (std::vector<int>{2, 1, 0}));

    Abc::IArchive opened = archive.archive();
    auto const bounds = Abc::GetIArchiveBounds(opened);
    EXPECT_EQ(bounds.getNumSamples(), 3U);
    EXPECT_EQ(bounds.getValue(Abc::ISampleSelector(Abc::index_t(2))).max,
              Imath::V3d(static_cast<double>(2.2F), 3.0, 0.0));
}

// Wherever in a large mesh the vertices are that lie farthest out, in the first frame and later.
TEST(AlembicMesh, BoxesReachToEveryVertex)
{
    int const count = 37;
    ProjectBuilder builder(count);
    builder.addLayer("Wall");
    MarloHost::MeshModel mesh;
    mesh.vertexCount = count;
    mesh.faceCounts = {3};
    mesh.faceIndices = {0, 1, 2};
    mesh.tracks.emplace_back();
    for (int frame = 0; frame < count; ++frame)
    {
        mesh.tracks[0].frames.push_back(frame);
        std::vector<double> positions(2 * count, 50.0);
        std::size_t const lowest = 2 * static_cast<std::size_t>(frame);
        std::size_t const highest = 2 * static_cast<std::size_t>((frame + 5) % count);
        positions[lowest] = -480;
        positions[lowest + 1] = -270;
        positions[highest] = 960;
        positions[highest + 1] = 540;
        mesh.tracks[0].positions.insert(mesh.tracks[0].positions.end(), positions.begin(), positions.end());
    }
    builder.layer().mesh = mesh;
    OpenArchive const archive = archiveOf<AlembicMeshExporter>(builder);
    Abc::IArchive opened = archive.archive();
    Imath::Box3d const expected(Imath::V3f(-4.8F, -2.7F, 0), Imath::V3f(9.6F, 5.4F, 0));
    for (Abc::IBox3dProperty const& boxes :
         {Abc::GetIArchiveBounds(opened), Abc::IPolyMesh(archive.top(), "Wall").getSchema().getSelfBoundsProperty()})
    {
        ASSERT_EQ(boxes.getNumSamples(), static_cast<std::size_t>(count));
        for (Abc::index_t frame = 0; frame < count; ++frame)
        {
            EXPECT_EQ(boxes.getValue(Abc::ISampleSelector(frame)), expected) << frame;
        }
    }
}

TEST(AlembicMesh, FieldsAreHalfAFrameApart)
{
    ProjectBuilder builder = triangle();
    builder.clip().interlaced = true;
    OpenArchive const archive = archiveOf<AlembicMeshExporter>(builder);
    auto const times = Abc::IPolyMesh(archive.top(), "Wall").getSchema().getTimeSampling();
    EXPECT_DOUBLE_EQ(times->getSampleTime(0), 3.5 / 24);
    EXPECT_DOUBLE_EQ(times->getSampleTime(1), 4.0 / 24);
}

TEST(AlembicMesh, ALayerWithoutAMeshLeavesTheCamera)
{
    ProjectBuilder builder = triangle();
    builder.layer().mesh.reset();
    for (auto const& archive :
         {archiveOf<AlembicMeshExporter>(builder), archiveOf<AlembicVertexTransformExporter>(builder)})
    {
        EXPECT_EQ(archive.names(), std::vector<std::string>{"marlo-camera"});
    }
}

TEST(AlembicMesh, AVertexThatIsNotFiniteStaysWhereItWas)
{
    double const nan = std::nan("");
    double const inf = std::numeric_limits<double>::infinity();
    struct Case
    {
        double first, second, third;
        std::vector<double> expected;
        int failed;
    };
    for (Case const& c : {Case{200, nan, 220, {2.0F, 2.0F, 2.2F}, 1}, Case{nan, inf, 220, {2.2F, 2.2F, 2.2F}, 2},
                          Case{200, 210, -inf, {2.0F, 2.1F, 2.1F}, 1}, Case{200, 1e-37, 220, {2.0F, 2.0F, 2.2F}, 1},
                          Case{nan, nan, nan, {0, 0, 0}, 3}})
    {
        ProjectBuilder builder = triangle();
        std::vector<double>& positions = builder.layer().mesh->tracks[0].positions;
        positions[2] = c.first;
        positions[8] = c.second;
        positions[14] = c.third;
        auto const mesh = run<AlembicMeshExporter>(builder);
        EXPECT_EQ(mesh.failedCount, c.failed);
        EXPECT_EQ(secondVertex(OpenArchive(mesh.files.value("out.abc")), "Wall"), c.expected);

        auto const vertices = run<AlembicVertexTransformExporter>(builder);
        EXPECT_EQ(vertices.failedCount, c.failed);
        OpenArchive const archive(vertices.files.value("out.abc"));
        std::vector<double> xs;
        for (int i = 0; i < 3; ++i)
        {
            xs.push_back(archive.matrix("Wall_0002_transform", i)[3][0]);
        }
        EXPECT_EQ(xs, c.expected);
    }
}

TEST(AlembicMesh, EveryVertexIsATransformWithAPointInIt)
{
    OpenArchive const archive = archiveOf<AlembicVertexTransformExporter>(triangle("a/b"));
    EXPECT_EQ(archive.names(), (std::vector<std::string>{"marlo-camera", "a_b_0001_transform", "a_b_0002_transform",
                                                         "a_b_0003_transform"}));
    for (std::string const number : {"0001", "0002", "0003"})
    {
        Abc::IXform const transform(archive.top(), "a_b_" + number + "_transform");
        Abc::IPoints const point(transform, "a_b_" + number + "_vertex");
        EXPECT_EQ(transform.getSchema().getNumSamples(), 3U);
        EXPECT_EQ(point.getSchema().getNumSamples(), 3U);
        EXPECT_EQ((*point.getSchema().getValue().getPositions())[0], Imath::V3f(0));
    }
}

TEST(AlembicMesh, NamesAreMadeFitAndThatIsToldOnceAndIsNoFailure)
{
    std::string const longName(10000, 'x');
    struct Case
    {
        QString name;
        std::string expected;
        bool isTold;
    };
    for (Case const& c :
         {Case{"a/b;c=d \"%1\"", "a_b;c=d \"%1\"", true}, Case{"marlo-camera", "marlo-camera_0001", true},
          Case{"Grüße 日本", "Grüße 日本", false}, Case{QString::fromStdString(longName), longName, false}})
    {
        auto const result = run<AlembicMeshExporter>(triangle(c.name));
        EXPECT_EQ(OpenArchive(result.files.value("out.abc")).names().at(1), c.expected);
        EXPECT_EQ(result.notices.size(), c.isTold ? 1U : 0U);
        EXPECT_EQ(result.messages, QStringList());
    }
}

TEST(AlembicMesh, WhatTheLibraryRefusesEndsTheExportWithItsWords)
{
    ProjectBuilder builder = triangle();
    builder.model.frameRate = std::numeric_limits<double>::infinity();
    try
    {
        run<AlembicMeshExporter>(builder);
        FAIL() << "was written";
    }
    catch (KORV_ExternalException const& failure)
    {
        EXPECT_TRUE(failure.message().contains("Time per cycle must be greater than 0")) << failure.what();
    }
}

TEST(AlembicMesh, WhatCannotBeOneFileIsRefusedBeforeItIsMade)
{
    ProjectBuilder builder(1800);
    builder.addLayer("Wall");
    MarloHost::MeshModel mesh;
    mesh.vertexCount = 100000;
    mesh.tracks.emplace_back();
    mesh.tracks[0].frames = {0};
    mesh.tracks[0].positions.resize(2 * 100000);
    builder.layer().mesh = mesh;
    try
    {
        run<AlembicMeshExporter>(builder);
        FAIL() << "was written";
    }
    catch (KORV_OperationFailed const& failure)
    {
        EXPECT_TRUE(failure.message().contains("2160000000 bytes")) << failure.what();
    }
}

}
