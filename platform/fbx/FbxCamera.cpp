#include "FbxCamera.h"

#include "FbxManagerData.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace fbxsdk
{

FBXSDK_OBJECT_IMPLEMENT(FbxCamera);
FBXSDK_OBJECT_IMPLEMENT(FbxCameraStereo);

namespace
{

constexpr double millimetresPerInch = 25.4;
constexpr double degreesPerRadian = 57.295779513082320877;
constexpr double nearestPlane = 0.001;
constexpr double farthestPlane = 600000.0;
constexpr double smallestSize = 0.0001;

/// Width and height in inches, and how much wider the picture is than on the film.
struct Film
{
    double width;
    double height;
    double squeeze;
};

/// In the order of the formats, the first one custom.
constexpr std::array<Film, 12> films{{
    {},
    {0.404, 0.295, 1},
    {0.493, 0.292, 1},
    {0.864, 0.630, 1},
    {0.816, 0.612, 1},
    {0.980, 0.735, 1},
    {0.825, 0.446, 1},
    {0.864, 0.732, 2},
    {2.066, 0.906, 1},
    {1.485, 0.991, 1},
    {2.080, 1.480, 1},
    {2.772, 2.072, 1},
}};

}

FbxCamera::FbxCamera(FbxManager& manager, char const* name) : FbxCamera(manager, name, fbxCameraDefinitions())
{
}

FbxCamera::FbxCamera(FbxManager& manager, char const* name, FbxDefinitions const& definitions)
    : FbxNodeAttribute(manager, name, definitions),
      Position(defined("Position")),
      UpVector(defined("UpVector")),
      InterestPosition(defined("InterestPosition")),
      Roll(defined("Roll")),
      AspectRatioMode(defined("AspectRatioMode")),
      AspectWidth(defined("AspectWidth")),
      AspectHeight(defined("AspectHeight")),
      PixelAspectRatio(defined("PixelAspectRatio")),
      ApertureMode(defined("ApertureMode")),
      FilmFormat(defined("FilmFormatIndex")),
      GateFit(defined("GateFit")),
      FieldOfView(defined("FieldOfView")),
      FieldOfViewX(defined("FieldOfViewX")),
      FieldOfViewY(defined("FieldOfViewY")),
      FocalLength(defined("FocalLength")),
      FilmWidth(defined("FilmWidth")),
      FilmHeight(defined("FilmHeight")),
      FilmAspectRatio(defined("FilmAspectRatio")),
      FilmSqueezeRatio(defined("FilmSqueezeRatio")),
      FilmOffsetX(defined("FilmOffsetX")),
      FilmOffsetY(defined("FilmOffsetY")),
      OpticalCenterX(defined("OpticalCenterX")),
      OpticalCenterY(defined("OpticalCenterY")),
      NearPlane(defined("NearPlane")),
      FarPlane(defined("FarPlane")),
      ProjectionType(defined("CameraProjectionType")),
      OrthoZoom(defined("OrthoZoom")),
      ViewCameraToLookAt(defined("ViewCameraToLookAt")),
      LockMode(defined("LockMode"))
{
}

FbxNodeAttribute::EType FbxCamera::GetAttributeType() const
{
    return eCamera;
}

void FbxCamera::SetAspect(EAspectRatioMode mode, double width, double height)
{
    AspectRatioMode.Set(mode);
    AspectWidth.Set(width);
    AspectHeight.Set(height);
}

FbxCamera::EAspectRatioMode FbxCamera::GetAspectRatioMode() const
{
    return AspectRatioMode.Get();
}

void FbxCamera::SetPixelRatio(double ratio)
{
    PixelAspectRatio.Set(ratio);
}

double FbxCamera::GetPixelRatio() const
{
    return PixelAspectRatio.Get();
}

void FbxCamera::SetApertureMode(EApertureMode mode)
{
    ApertureMode.Set(mode);
}

FbxCamera::EApertureMode FbxCamera::GetApertureMode() const
{
    return ApertureMode.Get();
}

void FbxCamera::SetApertureFormat(EApertureFormat format)
{
    FilmFormat.Set(format);
    if (format > eCustomAperture && format < static_cast<int>(films.size()))
    {
        Film const& film = films[static_cast<std::size_t>(format)];
        SetApertureWidth(film.width);
        SetApertureHeight(film.height);
        SetSqueezeRatio(film.squeeze);
    }
}

FbxCamera::EApertureFormat FbxCamera::GetApertureFormat() const
{
    return FilmFormat.Get();
}

void FbxCamera::SetApertureWidth(double inches)
{
    FilmWidth.Set(std::max(inches, smallestSize));
    FilmAspectRatio.Set(FilmWidth.Get() / FilmHeight.Get());
}

double FbxCamera::GetApertureWidth() const
{
    return FilmWidth.Get();
}

void FbxCamera::SetApertureHeight(double inches)
{
    FilmHeight.Set(std::max(inches, smallestSize));
    FilmAspectRatio.Set(FilmWidth.Get() / FilmHeight.Get());
}

double FbxCamera::GetApertureHeight() const
{
    return FilmHeight.Get();
}

void FbxCamera::SetSqueezeRatio(double ratio)
{
    FilmSqueezeRatio.Set(std::max(ratio, smallestSize));
}

double FbxCamera::GetSqueezeRatio() const
{
    return FilmSqueezeRatio.Get();
}

void FbxCamera::SetNearPlane(double distance)
{
    NearPlane.Set(std::clamp(distance, nearestPlane, farthestPlane));
}

double FbxCamera::GetNearPlane() const
{
    return NearPlane.Get();
}

void FbxCamera::SetFarPlane(double distance)
{
    FarPlane.Set(std::clamp(distance, nearestPlane, farthestPlane));
}

double FbxCamera::GetFarPlane() const
{
    return FarPlane.Get();
}

double FbxCamera::ComputeFieldOfView(double focalLength) const
{
    double const inches = ApertureMode.Get() == eVertical ? FilmHeight.Get() : FilmWidth.Get();
    return focalLength > 0 ? 2 * std::atan(inches * millimetresPerInch / (2 * focalLength)) * degreesPerRadian : 0.0;
}

double FbxCamera::ComputeFocalLength(double angle) const
{
    double const inches = ApertureMode.Get() == eVertical ? FilmHeight.Get() : FilmWidth.Get();
    return angle > 0 ? inches * millimetresPerInch / (2 * std::tan(angle / (2 * degreesPerRadian))) : 0.0;
}

FbxCameraStereo::FbxCameraStereo(FbxManager& manager, char const* name)
    : FbxCamera(manager, name, fbxCameraStereoDefinitions()),
      Stereo(defined("Stereo")),
      InteraxialSeparation(defined("InteraxialSeparation")),
      ZeroParallax(defined("ZeroParallax")),
      ToeInAdjust(defined("ToeInAdjust")),
      FilmOffsetRightCam(defined("FilmOffsetRightCam")),
      FilmOffsetLeftCam(defined("FilmOffsetLeftCam")),
      RightCamera(defined("RightCamera")),
      LeftCamera(defined("LeftCamera")),
      PrecompFileName(defined("PrecompFileName")),
      RelativePrecompFileName(defined("RelativePrecompFileName"))
{
}

FbxNodeAttribute::EType FbxCameraStereo::GetAttributeType() const
{
    return eCameraStereo;
}

bool FbxCameraStereo::SetLeftCamera(FbxCamera* camera)
{
    return camera && LeftCamera.Set(camera);
}

bool FbxCameraStereo::SetRightCamera(FbxCamera* camera)
{
    return camera && RightCamera.Set(camera);
}

FbxCamera* FbxCameraStereo::GetLeftCamera() const
{
    return dynamic_cast<FbxCamera*>(LeftCamera.Get());
}

FbxCamera* FbxCameraStereo::GetRightCamera() const
{
    return dynamic_cast<FbxCamera*>(RightCamera.Get());
}

}
