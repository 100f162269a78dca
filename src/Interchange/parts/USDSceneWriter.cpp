// What a stage starts with: range, the pose of the scene, camera; and what all prims are given.

#include "Interchange/parts/USDSceneWriter.h"

#include "Interchange/parts/USDValues.h"

#include <pxr/base/vt/value.h>
#include <pxr/usd/usdGeom/camera.h>
#include <pxr/usd/usdGeom/xform.h>

#include <algorithm>
#include <stdexcept>

PXR_NAMESPACE_USING_DIRECTIVE

namespace Export
{

using Korvane::CameraSolve::CameraAnimData;
using Korvane::CameraSolve::PointAnimData;
using Sabrel::Vector3;

namespace
{

// Names of prims beside those of the user.
constexpr char CAMERA_TRANSFORM[] = "CameraTransform";
constexpr char CAMERA[] = "Camera";
constexpr char FEATURES[] = "SolvedFeatures";

/// Size of a point's marker where the user wants one fixed size, in scene units.
constexpr double FIXED_POINT_SCALE = 0.01;

/// How much of the picture's width a marker of suggested size fills: 0.2 as a single float.
constexpr double PART_OF_PICTURE = 0.20000000447034846;

// Near and far plane in scene sizes, and for a scene without points.
constexpr double NEAR_PART = 0.001;
constexpr double FAR_PART = 1000.0;
constexpr double USUAL_SCENE_SIZE = 10.0;

}

USDSceneWriter::USDSceneWriter(KORV_ProjectManager& project, Korvane::CameraSolve::ExporterHelper& solve,
                               KV::BasicUSDGraph& graph, USDChoice const& choice)
    : m_project(project),
      m_scene(project.scene3DParameters()),
      m_solve(solve),
      m_graph(graph),
      m_choice(choice),
      m_axes(solve),
      m_cameraPath(m_paths.take(graph.rootPath(), QLatin1String(CAMERA_TRANSFORM))),
      m_featuresPath(m_paths.take(graph.rootPath(), QLatin1String(FEATURES)))
{
}

void USDSceneWriter::write()
{
    writeRange();
    writeScene();
    writeCamera();
    writeLayers();
    m_solve.clearParamData();
    if (m_choice.includeFeatures)
    {
        writeFeatures();
        m_solve.clearParamData();
    }
    writeAssets();
}

// The playback range, where the samples are.
void USDSceneWriter::writeRange()
{
    UsdStage& stage = m_graph.stage();
    double const offset = m_project.frameOffset();
    stage.SetStartTimeCode(m_project.playbackInPoint(false) + offset);
    stage.SetEndTimeCode(m_project.playbackOutPoint(false) + offset);
    stage.SetFramesPerSecond(m_project.frameRate());
    stage.SetTimeCodesPerSecond(m_project.frameRate());
}

void USDSceneWriter::writeScene()
{
    UsdGeomXform const root = UsdGeomXform::Define(m_graph.stagePtr(), m_graph.rootPath());
    if (!m_choice.sceneAtOrigin)
    {
        Korvane::CameraSolve::KeyframePRS const pose = m_axes.sceneTransform();
        setPose(Placer(root), pose.position, pose.rotation, pose.scale, UsdTimeCode::Default());
    }
}

void USDSceneWriter::writeCamera()
{
    ZN::Camera3DParameterSet const* const parameters = m_scene.cameraParameters(0);
    if (!parameters)
    {
        throw std::runtime_error("No scene camera found. Perhaps the scene is not camera solved?");
    }
    CameraAnimData const data = m_solve.cameraAnimData(*parameters);
    measureScene(data);

    UsdGeomXform const transform = UsdGeomXform::Define(m_graph.stagePtr(), m_cameraPath);
    UsdGeomCamera const camera =
        UsdGeomCamera::Define(m_graph.stagePtr(), m_paths.take(m_cameraPath, QLatin1String(CAMERA)));
    writeFocalLength(camera.CreateFocalLengthAttr(), data);
    // Planes are single floats.
    bool const hasSize = m_sceneSize > 0.0 && isWritable(static_cast<double>(toFloat(FAR_PART * m_sceneSize)));
    double const size = hasSize ? m_sceneSize : USUAL_SCENE_SIZE;
    camera.CreateClippingRangeAttr(VtValue(GfVec2f(toFloat(NEAR_PART * size), toFloat(FAR_PART * size))));
    camera.CreateHorizontalApertureAttr(VtValue(toFloat(m_axes.apertureWidth())));
    camera.CreateVerticalApertureAttr(VtValue(toFloat(m_axes.apertureHeight())));

    Placer const placer(transform);
    std::vector<Vector3> const rotations = m_axes.rotations(data.rotations);
    for (std::size_t i = 0; i < data.contexts.size(); ++i)
    {
        GfVec3d const position = toDoubles(m_axes.position(data.positions.at(i)));
        GfVec3f const rotation = toFloats(rotations.at(i));
        if (!isWritableVector(position) || !isWritableVector(rotation))
        {
            ++m_failedCount;
            continue;
        }
        UsdTimeCode const time = timeOf(data.contexts[i]);
        placer.SetTranslate(position, time);
        placer.SetRotate(rotation, Placer::RotationOrderXYZ, time);
    }
}

void USDSceneWriter::writeFocalLength(UsdAttribute const& attribute, CameraAnimData const& data)
{
    std::size_t const count =
        data.focalIsAnimated ? data.focalLengths.size() : std::min<std::size_t>(1, data.focalLengths.size());
    for (std::size_t i = 0; i < count; ++i)
    {
        float const focalLength = m_axes.focalLength(data.focalLengths[i]);
        if (!isWritable(static_cast<double>(focalLength)))
        {
            ++m_failedCount;
            continue;
        }
        attribute.Set(focalLength, data.focalIsAnimated ? timeOf(data.contexts.at(i)) : UsdTimeCode::Default());
    }
}

// A marker of suggested size fills the same part of the picture whatever the lens, seen from
// where the camera starts.
void USDSceneWriter::measureScene(CameraAnimData const& camera)
{
    double const size = camera.positions.empty()
                            ? 0.0
                            : m_solve.suggestPointScale(true, m_choice.includeFeatures, camera.positions.front());
    m_sceneSize = isWritable(size) ? size : 0.0;
    m_pointScale = toFloat(FIXED_POINT_SCALE);
    if (m_choice.suggestPointSize && m_sceneSize > 0.0)
    {
        double const focalLength = static_cast<double>(m_axes.focalLength(camera.focalLengths.at(0)));
        float const suggested = toFloat(m_sceneSize * PART_OF_PICTURE * m_axes.apertureWidth() / focalLength);
        m_pointScale = isWritable(static_cast<double>(suggested)) ? suggested : m_pointScale;
    }
}

void USDSceneWriter::writePose(Placer const& placer, PointAnimData const& data)
{
    std::vector<Vector3> const rotations = m_axes.rotations(data.rotations);
    for (std::size_t i = 0; i < data.contexts.size(); ++i)
    {
        setPose(placer, m_axes.position(data.positions.at(i)), rotations.at(i), data.scales.at(i),
                timeOf(data.contexts, i));
    }
}

void USDSceneWriter::setPose(Placer const& placer, Vector3 const& position, Vector3 const& rotation,
                             Vector3 const& scale, UsdTimeCode time)
{
    GfVec3d const translation = toDoubles(position);
    GfVec3f const degrees = toFloats(rotation);
    GfVec3f const factors = toFloats(scale);
    if (!isWritableVector(translation) || !isWritableVector(degrees) || !isWritableVector(factors))
    {
        ++m_failedCount;
        return;
    }
    placer.SetTranslate(translation, time);
    placer.SetRotate(degrees, Placer::RotationOrderXYZ, time);
    placer.SetScale(factors, time);
}

UsdTimeCode USDSceneWriter::timeOf(Anm::Context const& context) const
{
    return UsdTimeCode(context.time().value() + m_project.frameOffset());
}

UsdTimeCode USDSceneWriter::timeOf(std::vector<Anm::Context> const& contexts, std::size_t index) const
{
    return contexts.size() == 1 ? UsdTimeCode::Default() : timeOf(contexts[index]);
}

}
