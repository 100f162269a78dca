// The 3D scene in a project file, to its text.

#include "ProjectWriting.h"

#include <algorithm>

namespace MarloHost
{

namespace
{

bool areAll(std::vector<double> const& numbers, double value)
{
    return std::all_of(numbers.begin(), numbers.end(), [value](double number) { return number == value; });
}

bool isOrigin(PoseModel const& pose)
{
    return pose.frames.empty() && areAll(pose.positions, 0.0) && areAll(pose.rotations, 0.0) &&
           areAll(pose.scales, 1.0);
}

void writePoseKeys(JsonText& json, PoseModel const& pose)
{
    if (!pose.frames.empty())
    {
        writeFrames(json, pose.frames);
    }
    json.numbers("positions", pose.positions.empty() ? std::vector<double>(3, 0.0) : pose.positions, 3);
    if (!areAll(pose.rotations, 0.0))
    {
        json.numbers("rotations", pose.rotations, 3);
    }
    if (!areAll(pose.scales, 1.0))
    {
        json.numbers("scales", pose.scales, 10);
    }
}

void writeOptionalPose(JsonText& json, PoseModel const& pose)
{
    if (!isOrigin(pose))
    {
        writePoseKeys(json, pose);
    }
}

void writePose(JsonText& json, char const* key, PoseModel const& pose)
{
    if (!isOrigin(pose))
    {
        json.open(key, '{');
        writePoseKeys(json, pose);
        json.close('}');
    }
}

template <typename Numbers>
void writeNumbers(JsonText& json, char const* key, Numbers const& numbers, std::size_t perLine)
{
    if (!numbers.empty())
    {
        json.numbers(key, numbers, perLine);
    }
}

void writePointKeys(JsonText& json, PointCloudModel const& points)
{
    if (!points.frames.empty())
    {
        json.numbers("frames", points.frames, 20);
    }
    json.numbers("positions", points.positions, 3);
    if (!points.names.isEmpty())
    {
        json.open("names", '[');
        for (QString const& name : points.names)
        {
            json.string(nullptr, name);
        }
        json.close(']');
    }
    writeNumbers(json, "inaccurate", points.inaccurate, 20);
    writeNumbers(json, "faceCounts", points.faceCounts, 20);
    writeNumbers(json, "faceIndices", points.faceIndices, 20);
    writeNumbers(json, "uvs", points.uvs, 2);
}

void writePoints(JsonText& json, char const* key, std::optional<PointCloudModel> const& points)
{
    if (points)
    {
        json.open(key, '{');
        writePointKeys(json, *points);
        json.close('}');
    }
}

void writeCamera(JsonText& json, CameraModel const& camera)
{
    json.open("camera", '{');
    writePoseKeys(json, camera.pose);
    writeKeyed(json, "focalLength", camera.focalLength, CameraModel().focalLength.value);
    if (camera.filmBackWidth)
    {
        json.number("filmBackWidth", *camera.filmBackWidth);
    }
    json.close('}');
}

void writeStereo(JsonText& json, StereoModel const& stereo)
{
    constexpr double ALWAYS = -1;
    json.open("stereo", '{');
    json.string("mode", stereo.converged ? QStringLiteral("converged") : QStringLiteral("parallel"));
    writeKeyed(json, "separation", stereo.separation, ALWAYS);
    if (stereo.converged)
    {
        writeKeyed(json, "convergence", stereo.convergence, 0);
    }
    writeKeyed(json, "shiftLeft", stereo.shift[0], 0);
    writeKeyed(json, "shiftRight", stereo.shift[1], 0);
    json.close('}');
}

void writeFeatures(JsonText& json, FeatureSetModel const& features)
{
    json.open(nullptr, '{');
    json.string("name", features.name);
    writeName(json, "layer", features.layer);
    writeFlag(json, "hidden", features.hidden);
    writeFlag(json, "selected", features.selected);
    writePointKeys(json, features.points);
    json.close('}');
}

void writeRoot(JsonText& json, SolveModel const& solve)
{
    bool const isNamed = solve.featureRootName != SolveModel().featureRootName;
    if (!isNamed && isOrigin(solve.featureRoot))
    {
        return;
    }
    json.open("featureRoot", '{');
    if (isNamed)
    {
        json.string("name", solve.featureRootName);
    }
    writeOptionalPose(json, solve.featureRoot);
    json.close('}');
}

void writeAsset(JsonText& json, FileAssetModel const& asset)
{
    json.open(nullptr, '{');
    json.string("path", asset.path);
    writeName(json, "layer", asset.layer);
    writeOptionalPose(json, asset.pose);
    json.close('}');
}

}

void writeLayerObject(JsonText& json, LayerModel const& layer)
{
    writePose(json, "pose", layer.pose);
    writePoints(json, "surfacePoints", layer.surfacePoints);
    writePoints(json, "meshPoints", layer.meshPoints);
}

void writeGroupObject(JsonText& json, GroupModel const& group)
{
    writePose(json, "pose", group.pose);
}

void writeSolve(JsonText& json, SolveModel const& solve)
{
    json.open("solve", '{');
    writeCamera(json, solve.camera);
    if (solve.stereo)
    {
        writeStereo(json, *solve.stereo);
    }
    writePose(json, "scene", solve.scene);
    if (solve.referenceFrame != 0)
    {
        json.number("referenceFrame", solve.referenceFrame);
    }
    writeFlag(json, "legacy", solve.legacy);
    writeArray(json, "features", solve.features, writeFeatures);
    writeRoot(json, solve);
    writeArray(json, "assets", solve.assets, writeAsset);
    json.close('}');
}

}
