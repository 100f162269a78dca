// The archive of a matchmove scene:
//
//   /scene                              the pose of the scene, when it has one; all else is below it
//   /scene/Shot 1                       the camera's pose, a sample for each frame
//   /scene/Shot 1/Data                  the camera itself: lens and film back, likewise
//   /scene/Shot 1/ShotPreLens           at rest
//   /scene/Shot 1/Screen                fills the picture, far behind everything
//   /scene/Shot 1/Screen/Shape          a grid from -1 to 1 with the picture's 0 to 1 on it
//   /scene/Shot 1/Trackers              undoes the camera's pose, so that what is below it is in the scene
//   /scene/Shot 1/Trackers/Corner 1     a translation for each point that was solved
//   ...
//   /scene/House                        the pose of a mesh, named after it
//   /scene/House/Chisel                 the mesh: faces, points, UVs
//
// What is at rest has one sample. No two objects have one name, wherever they are.

#include "Interchange/parts/AlembicSceneWriter.h"

#include "Interchange/parts/AlembicArchive.h"
#include "Interchange/parts/AlembicScreen.h"
#include "Interchange/parts/SceneBounds.h"
#include "Writing/ThrowHelpers.h"
#include "text/NumberText.h"

#include <algorithm>
#include <limits>

namespace Export
{

namespace
{

namespace Abc = Alembic::AbcGeom;

using Imath::M44d;
using Imath::V3d;
using Imath::V3f;
using KestreliaLib::Camera;
using KestreliaLib::Mesh;
using KestreliaLib::Shot;
using KestreliaLib::Tracker;

constexpr double MILLIMETRES_PER_CENTIMETRE = 10.0;

/// Where the far plane is, in distances of the screen, and the screen a little before it.
constexpr double FAR_PLANE = 1000.0;
constexpr double BEFORE_FAR_PLANE = 0.995;
constexpr double NEAR_OF_FAR = 1e-5;

/// Rounding of vertices that shows, of the size of their mesh.
constexpr double VISIBLE_ROUNDING = 1e-5;

void addSample(Abc::OXform& transform, M44d const& matrix)
{
    Abc::XformSample sample;
    sample.setMatrix(matrix);
    transform.getSchema().set(sample);
}

class SceneWriter
{
public:
    SceneWriter(KestreliaLib::Scene const& scene, double scale, AlembicContents& contents, QStringList& messages)
        : m_scene(scene), m_scale(scale), m_contents(contents), m_messages(messages), m_bounds(scene, scale)
    {
    }

    void write()
    {
        Abc::OObject root = m_contents.top;
        M44d sceneMatrix;
        if (m_scene.pose)
        {
            sceneMatrix = matrixOf(*m_scene.pose, m_scale);
            Abc::OXform node = child(root, "scene");
            addSample(node, sceneMatrix);
            root = node;
        }
        refuseBeyondSingle(sceneMatrix);
        for (Shot const& shot : m_scene.shots)
        {
            writeShot(root, shot);
        }
        for (Mesh const& mesh : m_scene.meshes)
        {
            writeMesh(root, mesh);
        }
        for (Imath::Box3d const& box : m_bounds.frames())
        {
            m_contents.addBounds(Imath::transform(box, sceneMatrix));
        }
        m_messages += m_contents.names.renamed().isEmpty() ? QStringList() : QStringList(m_contents.names.renamed());
    }

private:
    /// A node with a name of this writer's own.
    Abc::OXform child(Abc::OObject const& parent, char const* name)
    {
        return Abc::OXform(parent, m_contents.names.claimOwn(QString::fromLatin1(name)), m_contents.timeSampling);
    }

    // Vertices are single floats, and so is most of what importers make of the rest.
    void refuseBeyondSingle(M44d const& sceneMatrix) const
    {
        constexpr double MOST = std::numeric_limits<float>::max();
        Imath::Box3d const reach(V3d(-MOST), V3d(MOST));
        for (Imath::Box3d const& box : m_bounds.frames())
        {
            Imath::Box3d const seen = Imath::transform(box, sceneMatrix);
            if (!box.isEmpty() && !(reach.intersects(seen.min) && reach.intersects(seen.max)))
            {
                throwOperationFailed("AlembicSceneWriter", __LINE__, QStringLiteral("refuseBeyondSingle"),
                                     QStringLiteral("The scene reaches farther than the numbers of an Alembic file: "
                                                    "points or meshes are beyond 1e38 units"));
            }
        }
    }

    void writeShot(Abc::OObject const& root, Shot const& shot)
    {
        QByteArray const name = "Shot " + QByteArray::number(shot.number);
        Abc::OXform node = child(root, name.constData());
        std::vector<M44d> poses;
        if (shot.camera && !shot.camera->poses.isEmpty())
        {
            for (int frame = shot.firstFrame; frame <= shot.lastFrame; ++frame)
            {
                poses.push_back(matrixOf(shot.camera->poses.at(frame), m_scale));
                addSample(node, poses.back());
            }
        }
        if (shot.camera && !shot.camera->lens.isEmpty())
        {
            writeCamera(node, shot);
            Abc::OXform preLens = child(node, "ShotPreLens");
            addSample(preLens, M44d());
            writeScreen(node, shot, poses);
        }
        writeTrackers(node, shot, poses);
    }

    // The film back is that of the picture as it is seen, so that programs agree whatever they
    // make of a squeeze; the shape of pixels is told beside it.
    void writeCamera(Abc::OXform const& node, Shot const& shot)
    {
        Camera const& camera = *shot.camera;
        Abc::OCamera object(node, m_contents.names.claimOwn(QStringLiteral("Data")), m_contents.timeSampling);
        Abc::ODoubleProperty(object.getSchema().getUserProperties(), "pixelAspect").set(shot.pixelAspect);
        double const farthest = std::max(FAR_PLANE * screenDistance(shot), m_bounds.farthest(shot));
        Abc::CameraSample sample;
        sample.setHorizontalAperture(camera.filmBack.x / MILLIMETRES_PER_CENTIMETRE);
        sample.setVerticalAperture(camera.filmBack.y / MILLIMETRES_PER_CENTIMETRE);
        sample.setNearClippingPlane(NEAR_OF_FAR * farthest);
        sample.setFarClippingPlane(farthest);
        for (int frame = shot.firstFrame; frame <= shot.lastFrame; ++frame)
        {
            sample.setFocalLength(camera.lens.at(frame).focalLength);
            object.getSchema().set(sample);
        }
    }

    double screenDistance(Shot const& shot) const
    {
        return shot.screenDistance * m_scale;
    }

    void writeScreen(Abc::OXform const& node, Shot const& shot, std::vector<M44d> const& poses)
    {
        Camera const& camera = *shot.camera;
        Abc::OXform screen = child(node, "Screen");
        double const distance = FAR_PLANE * BEFORE_FAR_PLANE * screenDistance(shot);
        for (int frame = shot.firstFrame; frame <= shot.lastFrame; ++frame)
        {
            double const widening = distance / (2.0 * camera.lens.at(frame).focalLength);
            M44d matrix;
            matrix.setScale(V3d(widening * camera.filmBack.x, widening * camera.filmBack.y, 1.0));
            matrix[3][2] = -distance;
            if (frame == shot.firstFrame || camera.lens.isMoving())
            {
                addSample(screen, matrix);
            }
            std::size_t const row = static_cast<std::size_t>(frame - shot.firstFrame);
            m_bounds.addScreen(row, row < poses.size() ? matrix * poses[row] : matrix);
        }
        writeScreenShape(screen, m_contents.names.claimOwn(QStringLiteral("Shape")), m_contents.timeSampling);
    }

    void writeTrackers(Abc::OXform const& node, Shot const& shot, std::vector<M44d> const& poses)
    {
        Abc::OXform trackers = child(node, "Trackers");
        for (M44d const& pose : poses)
        {
            addSample(trackers, pose.inverse());
        }
        for (Tracker const& tracker : shot.trackers)
        {
            if (!tracker.positions.isEmpty())
            {
                writeTracker(trackers, shot, tracker);
            }
        }
    }

    void writeTracker(Abc::OXform const& parent, Shot const& shot, Tracker const& tracker)
    {
        Abc::OXform point(parent, m_contents.names.claim(QString::fromStdString(tracker.name)),
                          m_contents.timeSampling);
        int const last = m_scene.isMoving(tracker) ? shot.lastFrame : shot.firstFrame;
        for (int frame = shot.firstFrame; frame <= last; ++frame)
        {
            Abc::XformSample sample;
            sample.setTranslation(m_scale * vectorOf(m_scene.worldPosition(tracker, frame)));
            point.getSchema().set(sample);
        }
    }

    void writeMesh(Abc::OObject const& root, Mesh const& mesh)
    {
        if (mesh.faceCounts.empty() || mesh.vertices.isEmpty() || m_scene.shots.empty())
        {
            return;
        }
        Shot const& shot = m_scene.shots.front();
        Abc::OXform node(root, m_contents.names.claim(QString::fromStdString(mesh.name)), m_contents.timeSampling);
        KestreliaLib::Object const* const object = m_scene.object(mesh.object);
        int const lastPose = object && object->poses.isMoving() ? shot.lastFrame : shot.firstFrame;
        for (int frame = shot.firstFrame; frame <= lastPose; ++frame)
        {
            addSample(node, matrixOf(mesh.pose, m_scale) * matrixOf(m_scene.objectPose(mesh.object, frame), m_scale));
        }
        writeMeshShape(node, shot, mesh);
    }

    void writeMeshShape(Abc::OXform const& node, Shot const& shot, Mesh const& mesh)
    {
        Abc::OPolyMesh object(node, m_contents.names.claimOwn(QStringLiteral("Chisel")), m_contents.timeSampling);
        std::vector<int> const faceIndices = clockwise(mesh.faceCounts, mesh.faceIndices);
        std::vector<int> const uvCorners =
            mesh.uvIndices.empty() ? faceIndices : clockwise(mesh.faceCounts, mesh.uvIndices);
        std::vector<std::uint32_t> const uvIndices(uvCorners.begin(), uvCorners.end());
        std::vector<Imath::V2f> uvs;
        for (KestreliaLib::Vector2 const& uv : mesh.uvs)
        {
            uvs.emplace_back(static_cast<float>(uv.x), static_cast<float>(uv.y));
        }
        Rounding rounding;
        int const last = mesh.vertices.isMoving() ? shot.lastFrame : shot.firstFrame;
        for (int frame = shot.firstFrame; frame <= last; ++frame)
        {
            std::vector<V3f> const points = toSingle(mesh.vertices.at(frame), rounding);
            Abc::OPolyMeshSchema::Sample sample{Abc::P3fArraySample(points)};
            if (frame == shot.firstFrame)
            {
                sample.setFaceIndices(Abc::Int32ArraySample(faceIndices));
                sample.setFaceCounts(Abc::Int32ArraySample(mesh.faceCounts));
                if (!uvs.empty())
                {
                    sample.setUVs(Abc::OV2fGeomParam::Sample(
                        Abc::V2fArraySample(uvs), Abc::UInt32ArraySample(uvIndices), Abc::kFacevaryingScope));
                }
            }
            object.getSchema().set(sample);
        }
        tellRounding(mesh, rounding);
    }

    /// How far single floats are from what they stand for.
    struct Rounding
    {
        double most = 0.0;
        Imath::Box3d box;
    };

    std::vector<V3f> toSingle(std::vector<KestreliaLib::Vector3> const& row, Rounding& rounding) const
    {
        std::vector<V3f> points;
        points.reserve(row.size());
        for (KestreliaLib::Vector3 const& vertex : row)
        {
            V3d const exact = m_scale * vectorOf(vertex);
            points.emplace_back(exact);
            V3d const error = V3d(points.back()) - exact;
            rounding.most = std::max({rounding.most, std::abs(error.x), std::abs(error.y), std::abs(error.z)});
            rounding.box.extendBy(exact);
        }
        return points;
    }

    void tellRounding(Mesh const& mesh, Rounding const& rounding)
    {
        if (rounding.most > VISIBLE_ROUNDING * rounding.box.size().length())
        {
            m_messages += QStringLiteral("Vertices of \"") + QString::fromStdString(mesh.name) +
                          QStringLiteral("\" are up to ") + Text::generalText(rounding.most) +
                          QStringLiteral(" units off, as they are single floats in this format. Bring the origin of "
                                         "the scene near to its points.");
        }
    }

    KestreliaLib::Scene const& m_scene;
    double m_scale;
    AlembicContents& m_contents;
    QStringList& m_messages;
    SceneBounds m_bounds;
};

/// Fields come at twice the frame rate, and their numbers count them.
AlembicTime timeOf(KestreliaLib::Scene const& scene)
{
    if (scene.shots.empty())
    {
        return {0.0, 1.0};
    }
    Shot const& shot = scene.shots.front();
    double const rate = shot.isInterlaced ? 2.0 * shot.frameRate : shot.frameRate;
    return {shot.firstFrame / rate, rate};
}

/// What the samples of everything that moves take at least, in bytes.
qint64 leastSize(KestreliaLib::Scene const& scene)
{
    qint64 size = 0;
    for (Shot const& shot : scene.shots)
    {
        qint64 const frames = static_cast<qint64>(shot.lastFrame) - shot.firstFrame + 1;
        auto const moving = std::count_if(shot.trackers.begin(), shot.trackers.end(),
                                          [&](Tracker const& tracker)
                                          { return !tracker.positions.isEmpty() && scene.isMoving(tracker); });
        size += frames * moving * static_cast<qint64>(sizeof(V3d));
    }
    for (Mesh const& mesh : scene.meshes)
    {
        for (auto const& row : mesh.vertices.values)
        {
            size += static_cast<qint64>(row.size() * sizeof(V3f));
        }
    }
    return size;
}

}

QByteArray writeAlembicScene(KestreliaLib::Scene const& scene, double scale, QStringList& messages)
{
    auto const fill = [&](AlembicContents& contents) { SceneWriter(scene, scale, contents, messages).write(); };
    return writeAlembic(timeOf(scene), leastSize(scene), fill);
}

}
