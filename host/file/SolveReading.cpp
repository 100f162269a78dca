// The 3D scene in a project file, from its text.

#include "ProjectReading.h"

#include <algorithm>

namespace MarloHost
{

namespace
{

constexpr double LEAST_SCALE = 1e-9;
constexpr double MOST_SCALE = 1e9;

std::vector<double> numbersInRange(JsonCursor const& cursor, std::size_t count, double least, double most)
{
    std::vector<double> numbers = cursor.takeNumbers(count);
    for (double const number : numbers)
    {
        if (number < least || number > most)
        {
            cursor.fail(QStringLiteral("%1 is out of range; expected %2 to %3").arg(number).arg(least).arg(most));
        }
    }
    return numbers;
}

// The keys of a pose in an object that may have others.
PoseModel readPoseKeys(JsonObject const& object, int frameCount)
{
    PoseModel pose;
    JsonCursor const positions = object.required("positions");
    std::size_t samples = 1;
    if (object.optional("frames") || object.optional("firstFrame"))
    {
        std::size_t const count = positions.numberCount();
        if (count == 0 || count % 3 != 0)
        {
            positions.fail(
                QStringLiteral("%1 numbers; expected three for each frame, and one frame or more").arg(count));
        }
        samples = count / 3;
        pose.frames = readFrames(object, 0, frameCount, samples, "positions");
    }
    pose.positions = positions.takeNumbers(samples * 3);
    if (std::optional<JsonCursor> const rotations = object.optional("rotations"))
    {
        pose.rotations = rotations->takeNumbers(samples * 3);
    }
    if (std::optional<JsonCursor> const scales = object.optional("scales"))
    {
        pose.scales = numbersInRange(*scales, samples, LEAST_SCALE, MOST_SCALE);
    }
    return pose;
}

// What may be left out where other keys say what the object is.
PoseModel readOptionalPose(JsonObject const& object)
{
    bool const isGiven = object.optional("positions") || object.optional("rotations") || object.optional("scales");
    return isGiven ? readPoseKeys(object, 0) : PoseModel();
}

PoseModel readObjectPose(JsonObject const& holder, bool isMoving, int frameCount)
{
    std::optional<JsonCursor> const cursor = holder.optional("pose");
    if (!cursor)
    {
        return {};
    }
    PoseModel const pose =
        readPoseKeys(JsonObject(*cursor, {"frames", "firstFrame", "positions", "rotations", "scales"}), frameCount);
    if (!pose.frames.empty() && !isMoving)
    {
        cursor->fail(QStringLiteral("only what is \"moving\" has a pose with keys"));
    }
    return pose;
}

QStringList readNames(JsonCursor const& cursor, int count)
{
    JsonElements const elements = cursor.elements();
    if (elements.size() != static_cast<std::size_t>(count))
    {
        cursor.fail(QStringLiteral("%1 names for %2 points").arg(elements.size()).arg(count));
    }
    QStringList names;
    names.reserve(count);
    for (JsonCursor const& element : elements)
    {
        names.append(element.string());
        if (names.back().isEmpty())
        {
            element.fail(QStringLiteral("a name must not be empty"));
        }
    }
    return names;
}

// The keys of solved points in an object that may have others.
PointCloudModel readPointKeys(JsonObject const& object, int frameCount)
{
    PointCloudModel points;
    JsonCursor const positions = object.required("positions");
    points.positions = positions.takeNumbers();
    if (std::optional<JsonCursor> const frames = object.optional("frames"))
    {
        points.frames = frames->ascendingIntegers(0, frameCount - 1);
        if (points.frames.empty())
        {
            frames->fail(QStringLiteral("no frames; leave them out for points at rest"));
        }
    }
    std::size_t const samples = std::max<std::size_t>(1, points.frames.size());
    if (points.positions.size() % (3 * samples) != 0)
    {
        positions.fail(QStringLiteral("%1 numbers; expected three for each point, and that for each of %2 frames")
                           .arg(points.positions.size())
                           .arg(samples));
    }
    int const count = points.pointCount();
    if (std::optional<JsonCursor> const names = object.optional("names"))
    {
        points.names = readNames(*names, count);
    }
    if (std::optional<JsonCursor> const inaccurate = object.optional("inaccurate"))
    {
        points.inaccurate = inaccurate->ascendingIntegers(0, count - 1);
    }
    if (object.optional("faceCounts") || object.optional("faceIndices"))
    {
        readFaces(object, count, points.faceCounts, points.faceIndices);
    }
    if (std::optional<JsonCursor> const uvs = object.optional("uvs"))
    {
        points.uvs = uvs->takeNumbers(2 * static_cast<std::size_t>(count));
    }
    return points;
}

std::optional<PointCloudModel> readPoints(JsonObject const& holder, char const* key, int frameCount)
{
    std::optional<JsonCursor> const cursor = holder.optional(key);
    if (!cursor)
    {
        return std::nullopt;
    }
    return readPointKeys(
        JsonObject(*cursor, {"frames", "positions", "names", "inaccurate", "faceCounts", "faceIndices", "uvs"}),
        frameCount);
}

/// Reads the solve of a project whose clips, views and layers are known.
class SolveReader
{
public:
    explicit SolveReader(ProjectModel const& project)
        : m_project(project), m_frameCount(project.clips.front().frameCount)
    {
        for (LayerModel const& layer : project.layers)
        {
            m_layers.insert(layer.name);
        }
    }

    SolveModel read(JsonCursor const& cursor) const
    {
        JsonObject const object(
            cursor, {"camera", "stereo", "scene", "referenceFrame", "legacy", "features", "featureRoot", "assets"});
        SolveModel solve;
        solve.camera = readCamera(object.required("camera"));
        if (std::optional<JsonCursor> const stereo = object.optional("stereo"))
        {
            solve.stereo = readStereo(*stereo);
        }
        if (std::optional<JsonCursor> const scene = object.optional("scene"))
        {
            solve.scene = readPoseKeys(JsonObject(*scene, {"positions", "rotations", "scales"}), m_frameCount);
        }
        solve.referenceFrame = object.integer("referenceFrame", 0, 0, m_frameCount - 1);
        solve.legacy = object.boolean("legacy", false);
        QSet<QString> names;
        JsonElements const sets = limitedElements(object, "features", MAX_RECORDS);
        solve.features.reserve(sets.size());
        for (JsonCursor const& features : sets)
        {
            solve.features.push_back(readFeatures(features, names));
        }
        if (std::optional<JsonCursor> const root = object.optional("featureRoot"))
        {
            readRoot(*root, solve);
        }
        JsonElements const assets = limitedElements(object, "assets", MAX_RECORDS);
        solve.assets.reserve(assets.size());
        for (JsonCursor const& asset : assets)
        {
            solve.assets.push_back(readAsset(asset));
        }
        return solve;
    }

private:
    CameraModel readCamera(JsonCursor const& cursor) const
    {
        JsonObject const object(cursor,
                                {"frames", "firstFrame", "positions", "rotations", "focalLength", "filmBackWidth"});
        CameraModel camera;
        camera.pose = readPoseKeys(object, m_frameCount);
        readKeyed(object, "focalLength", m_frameCount, 0.1, camera.focalLength, 10'000);
        if (std::optional<JsonCursor> const width = object.optional("filmBackWidth"))
        {
            camera.filmBackWidth = width->number(0.1, 1000);
        }
        return camera;
    }

    StereoModel readStereo(JsonCursor const& cursor) const
    {
        constexpr double MOST_SEPARATION = 1e9;
        constexpr double MOST_DEGREES = 179;
        constexpr double MOST_PIXELS = 100'000;
        JsonObject const object(cursor, {"mode", "separation", "convergence", "shiftLeft", "shiftRight"});
        if (m_project.views.size() < 2)
        {
            cursor.fail(QStringLiteral("a stereo rig needs two views, the project has one"));
        }
        StereoModel stereo;
        JsonCursor const mode = object.required("mode");
        QString const word = mode.string();
        stereo.converged = word == QLatin1String("converged");
        if (!stereo.converged && word != QLatin1String("parallel"))
        {
            mode.fail(QStringLiteral("expected \"parallel\" or \"converged\", found \"%1\"").arg(word));
        }
        object.required("separation");
        readKeyed(object, "separation", m_frameCount, 0, stereo.separation, MOST_SEPARATION);
        std::optional<JsonCursor> const convergence = object.optional("convergence");
        if (convergence && !stereo.converged)
        {
            convergence->fail(QStringLiteral("a parallel rig doesn't have it"));
        }
        readKeyed(object, "convergence", m_frameCount, 0, stereo.convergence, MOST_DEGREES);
        readKeyed(object, "shiftLeft", m_frameCount, -MOST_PIXELS, stereo.shift[0], MOST_PIXELS);
        readKeyed(object, "shiftRight", m_frameCount, -MOST_PIXELS, stereo.shift[1], MOST_PIXELS);
        return stereo;
    }

    FeatureSetModel readFeatures(JsonCursor const& cursor, QSet<QString>& names) const
    {
        JsonObject const object(cursor, {"name", "layer", "hidden", "selected", "frames", "positions", "names",
                                         "inaccurate", "faceCounts", "faceIndices", "uvs"});
        FeatureSetModel features;
        features.name = uniqueName(object, names);
        features.layer = layerName(object);
        features.hidden = object.boolean("hidden", false);
        features.selected = object.boolean("selected", false);
        features.points = readPointKeys(object, m_frameCount);
        return features;
    }

    static void readRoot(JsonCursor const& cursor, SolveModel& solve)
    {
        JsonObject const object(cursor, {"name", "positions", "rotations", "scales"});
        if (object.optional("name"))
        {
            QSet<QString> none;
            solve.featureRootName = uniqueName(object, none);
        }
        solve.featureRoot = readOptionalPose(object);
    }

    FileAssetModel readAsset(JsonCursor const& cursor) const
    {
        JsonObject const object(cursor, {"path", "layer", "positions", "rotations", "scales"});
        FileAssetModel asset;
        JsonCursor const path = object.required("path");
        asset.path = path.string();
        if (asset.path.isEmpty())
        {
            path.fail(QStringLiteral("must not be empty"));
        }
        asset.layer = layerName(object);
        asset.pose = readOptionalPose(object);
        return asset;
    }

    QString layerName(JsonObject const& object) const
    {
        QString const name = object.string("layer", QString());
        if (!name.isEmpty() && !m_layers.contains(name))
        {
            object.required("layer").fail(QStringLiteral("there is no layer \"%1\"").arg(name));
        }
        return name;
    }

    ProjectModel const& m_project;
    int m_frameCount;
    QSet<QString> m_layers;
};

}

void readLayerObject(JsonObject const& object, LayerModel& layer, ClipModel const& clip)
{
    layer.pose = readObjectPose(object, layer.moving, clip.frameCount);
    layer.surfacePoints = readPoints(object, "surfacePoints", clip.frameCount);
    layer.meshPoints = readPoints(object, "meshPoints", clip.frameCount);
}

void readGroupObject(JsonObject const& object, GroupModel& group, ClipModel const& firstClip)
{
    std::optional<JsonCursor> const pose = object.optional("pose");
    if (pose && !group.moving)
    {
        pose->fail(QStringLiteral("only a group that is \"moving\" has a pose"));
    }
    group.pose = readObjectPose(object, group.moving, firstClip.frameCount);
}

SolveModel readSolve(JsonCursor const& cursor, ProjectModel const& project)
{
    return SolveReader(project).read(cursor);
}

}
