// The camera: its node, its lens, its motion.

#include "FBX/parts/Camera.h"

#include "FBX/parts/Keys.h"
#include "Host/ZN_ClipInfo.h"
#include "Writing/Values.h"

#include <algorithm>
#include <cmath>

namespace Export
{
namespace FBXParts
{

using Korvane::CameraSolve::CameraAnimData;
using Sabrel::Vector3;

namespace
{

constexpr char CAMERA_NODE[] = "MarloCameraNode";

constexpr double INCHES_PER_MILLIMETRE = 0.03937008494017086;
constexpr double NEAR_PLANE = 0.01;
constexpr double FAR_PLANE = 10000.0;

/// The widest film that programs take in the cameras of old solves, millimetres.
constexpr double WIDEST_FILM = 40.0;

/// The part of the picture's width that a marker of scale 1 would fill.
constexpr double MARKER_SIZE = 0.2;

constexpr double DEGREES_PER_RADIAN = 180.0 / 3.14159265358979323846;

double angleOfView(double size, double focalLength)
{
    return 2.0 * std::atan2(size * 0.5, focalLength) * DEGREES_PER_RADIAN;
}

/// The picture in square pixels.
double pictureWidth(ZN::ImageFormat const& format)
{
    return format.size().width() * format.par();
}

/// Millimetres.
Mtx_Vector2 oldFilm(ZN::FilmType const& film)
{
    double const factor =
        film.isCustom() && film.filmBackWidth() > WIDEST_FILM ? WIDEST_FILM / film.filmBackWidth() : 1.0;
    return {factor * film.filmBackWidth(), factor * film.filmBackHeight()};
}

bool isKnown(Vector3 const& v)
{
    return areWritable(std::initializer_list<double>{v.x, v.y, v.z});
}

/// Positions are keyed as single floats: what that moves points by, a message where it shows.
void tellCoarseKeys(SceneContext& context, CameraAnimData const& data)
{
    constexpr double VISIBLE_PIXELS = 0.1;
    double off = 0.0;
    for (Vector3 const& position : data.positions)
    {
        Vector3 const p = context.adjustPosition(position);
        for (double const value : {p.x, p.y, p.z})
        {
            double const error = areKeyable({value}) ? value - static_cast<double>(static_cast<float>(value)) : 0.0;
            off = std::max(off, std::abs(error));
        }
    }
    double const distance = context.positionFactor *
                            context.solve.suggestPointScale(true, context.choices.includeFeatures, context.cameraStart);
    double const film = context.solve.filmBack().x;
    if (off == 0.0 || !(distance > 0.0) || data.focalLengths.empty() || !(film > 0.0))
    {
        return;
    }
    double const width = context.solve.baseClipInfo()->format().size().width();
    double const focalPixels = context.isOldSolve ? static_cast<double>(data.focalLengths.front())
                                                  : static_cast<double>(data.focalLengths.front()) * width / film;
    double const pixels = off * focalPixels / distance;
    if (pixels > VISIBLE_PIXELS)
    {
        context.messages += FBX3DExporterBase::tr("Keys of FBX are single floats, so that the camera is up to %1 units "
                                                  "and points are about %2 pixels off. Bring the origin of the scene "
                                                  "near to the camera.")
                                .arg(QString::number(off, 'g', 2), QString::number(pixels, 'g', 2));
    }
}

}

void setUpCamera(SceneContext const& context, FbxCamera& camera)
{
    ZN_BaseClipInfo const& clip = *context.solve.baseClipInfo();
    ZN::ImageFormat const& format = clip.format();
    camera.SetAspect(FbxCamera::eFixedResolution, pictureWidth(format), format.size().height());

    Mtx_Vector2 film;
    if (context.isOldSolve)
    {
        camera.SetApertureMode(FbxCamera::eHorizontal);
        film = oldFilm(clip.filmType());
    }
    else
    {
        camera.SetApertureMode(FbxCamera::eFocalLength);
        camera.SetApertureFormat(FbxCamera::eCustomAperture);
        camera.SetSqueezeRatio(format.par());
        film = context.solve.filmBack();
    }
    camera.SetApertureWidth(INCHES_PER_MILLIMETRE * film.x);
    camera.SetApertureHeight(INCHES_PER_MILLIMETRE * film.y);
    camera.FilmAspectRatio.Set(film.x / film.y);

    camera.ViewCameraToLookAt.Set(true);
    camera.InterestPosition.Set(FbxDouble3(0.0, 0.0, -1.0));
    camera.SetNearPlane(NEAR_PLANE);
    camera.SetFarPlane(FAR_PLANE);
}

void setFocalLength(SceneContext& context, FbxCamera& camera, CameraAnimData const& data)
{
    if (data.focalLengths.empty())
    {
        return;
    }
    std::vector<FbxTime> const times = context.timesOf(data.contexts);
    ZN::ImageFormat const& format = context.solve.baseClipInfo()->format();
    std::vector<double> lengths(data.focalLengths.begin(), data.focalLengths.end());
    if (context.isOldSolve)
    {
        std::transform(lengths.begin(), lengths.end(), lengths.begin(),
                       [&](double length) { return angleOfView(pictureWidth(format), length); });
        keyNumbers(context, camera.FieldOfView, times, lengths);
        return;
    }
    auto const first = std::find_if(lengths.begin(), lengths.end(), [](double length) { return areKeyable({length}); });
    if (first == lengths.end())
    {
        ++context.failedCount;
        return;
    }
    camera.FocalLength.Set(*first);
    if (data.focalIsAnimated)
    {
        keyNumbers(context, camera.FocalLength, times, lengths);
    }
    // The angles follow from film and focal length; some readers look at them alone.
    Mtx_Vector2 const film = context.solve.filmBack();
    double const horizontal = angleOfView(film.x * format.par(), *first);
    camera.FieldOfView.Set(horizontal);
    camera.FieldOfViewX.Set(horizontal);
    camera.FieldOfViewY.Set(angleOfView(film.y, *first));
}

CameraAnimData buildCamera(SceneContext& context, ZN::Camera3DParameterSet const& parameters, FbxCamera& camera)
{
    FbxNode* const node = FbxNode::Create(context.scene, context.nodeName(QString::fromLatin1(CAMERA_NODE)));
    node->SetNodeAttribute(&camera);
    setUpCamera(context, camera);

    CameraAnimData data = context.solve.cameraAnimData(parameters);
    std::vector<FbxTime> const times = context.timesOf(data.contexts);
    auto const start = std::find_if(data.positions.begin(), data.positions.end(), isKnown);
    if (start != data.positions.end())
    {
        context.cameraStart = *start;
        context.positionOrigin = *start;
    }
    keyVectors(context, node->LclTranslation, times, context.adjustPositions(data.positions));
    node->LclScaling.Set(FbxDouble3(1.0, 1.0, 1.0));
    keyVectors(context, node->LclRotation, times,
               context.adjustRotations(data.rotations, &FBX3DExporterBase::adjustCameraRotation));
    setFocalLength(context, camera, data);
    context.top().AddChild(node);

    if (!data.focalLengths.empty())
    {
        double const film =
            context.isOldSolve ? pictureWidth(context.solve.baseClipInfo()->format()) : context.solve.filmBack().x;
        double const scale = film / static_cast<double>(data.focalLengths.front()) * MARKER_SIZE;
        context.pointScale = areKeyable({scale}) ? scale : context.pointScale;
    }
    tellCoarseKeys(context, data);
    return data;
}

}
}
