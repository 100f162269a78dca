#pragma once
// Cameras, and rigs of two.

#include "FbxNode.h"

namespace fbxsdk
{

/// A camera. Its node's +X is where it looks, +Y up. Film is measured in inches, focal length
/// in millimetres, angles in degrees, near and far plane in units of the scene.
class FbxCamera : public FbxNodeAttribute
{
    FBXSDK_OBJECT_DECLARE(FbxCamera);
    FbxCamera(FbxManager& manager, char const* name, std::vector<FbxPropertyDefinition> const& definitions);

public:
    enum EProjectionType
    {
        ePerspective,
        eOrthogonal
    };

    enum EAspectRatioMode
    {
        eWindowSize,
        eFixedRatio,
        eFixedResolution,
        eFixedWidth,
        eFixedHeight
    };

    /// What the angle of view comes from.
    enum EApertureMode
    {
        eHorizAndVert,
        eHorizontal,
        eVertical,
        eFocalLength
    };

    enum EApertureFormat
    {
        eCustomAperture,
        e16mmTheatrical,
        eSuper16mm,
        e35mmAcademy,
        e35mmTVProjection,
        e35mmFullAperture,
        e35mm185Projection,
        e35mmAnamorphic,
        e70mmProjection,
        eVistaVision,
        eDynaVision,
        eIMAX
    };

    enum EGateFit
    {
        eFitNone,
        eFitVertical,
        eFitHorizontal,
        eFitFill,
        eFitOverscan,
        eFitStretch
    };

    EType GetAttributeType() const override;

    void SetAspect(EAspectRatioMode mode, double width, double height);
    EAspectRatioMode GetAspectRatioMode() const;
    void SetPixelRatio(double ratio);
    double GetPixelRatio() const;
    void SetApertureMode(EApertureMode mode);
    EApertureMode GetApertureMode() const;

    /// Also sets width, height and squeeze of the film, unless the format is custom.
    void SetApertureFormat(EApertureFormat format);
    EApertureFormat GetApertureFormat() const;
    void SetApertureWidth(double inches);
    double GetApertureWidth() const;
    void SetApertureHeight(double inches);
    double GetApertureHeight() const;
    void SetSqueezeRatio(double ratio);
    double GetSqueezeRatio() const;

    /// Planes are kept between 0.001 and 600000.
    void SetNearPlane(double distance);
    double GetNearPlane() const;
    void SetFarPlane(double distance);
    double GetFarPlane() const;

    /// The angle that the film's width (its height with eVertical) is seen under at this focal
    /// length, and back. 0 for what isn't above 0.
    double ComputeFieldOfView(double focalLength) const;
    double ComputeFocalLength(double angle) const;

    FbxPropertyT<FbxDouble3> Position;
    FbxPropertyT<FbxDouble3> UpVector;
    FbxPropertyT<FbxDouble3> InterestPosition;
    FbxPropertyT<FbxDouble> Roll;
    FbxPropertyT<EAspectRatioMode> AspectRatioMode;
    FbxPropertyT<FbxDouble> AspectWidth;
    FbxPropertyT<FbxDouble> AspectHeight;
    FbxPropertyT<FbxDouble> PixelAspectRatio;
    FbxPropertyT<EApertureMode> ApertureMode;
    FbxPropertyT<EApertureFormat> FilmFormat;
    FbxPropertyT<EGateFit> GateFit;
    FbxPropertyT<FbxDouble> FieldOfView;
    FbxPropertyT<FbxDouble> FieldOfViewX;
    FbxPropertyT<FbxDouble> FieldOfViewY;
    FbxPropertyT<FbxDouble> FocalLength;
    FbxPropertyT<FbxDouble> FilmWidth;
    FbxPropertyT<FbxDouble> FilmHeight;
    FbxPropertyT<FbxDouble> FilmAspectRatio;
    FbxPropertyT<FbxDouble> FilmSqueezeRatio;
    FbxPropertyT<FbxDouble> FilmOffsetX;
    FbxPropertyT<FbxDouble> FilmOffsetY;
    FbxPropertyT<FbxDouble> OpticalCenterX;
    FbxPropertyT<FbxDouble> OpticalCenterY;
    FbxPropertyT<FbxDouble> NearPlane;
    FbxPropertyT<FbxDouble> FarPlane;
    FbxPropertyT<EProjectionType> ProjectionType;
    FbxPropertyT<FbxDouble> OrthoZoom;
    FbxPropertyT<FbxBool> ViewCameraToLookAt;
    FbxPropertyT<FbxBool> LockMode;
};

/// A rig: its own camera is the centre, two others are the eyes.
///
/// Nodes of the eyes, when they have any, should hang under that of the rig.
class FbxCameraStereo : public FbxCamera
{
    FBXSDK_OBJECT_DECLARE(FbxCameraStereo);

public:
    enum EStereoType
    {
        eNone,
        eConverged,
        eOffAxis,
        eParallel
    };

    EType GetAttributeType() const override;

    /// @return false for null
    bool SetLeftCamera(FbxCamera* camera);
    bool SetRightCamera(FbxCamera* camera);
    FbxCamera* GetLeftCamera() const;
    FbxCamera* GetRightCamera() const;

    FbxPropertyT<EStereoType> Stereo;

    /// In units of the scene.
    FbxPropertyT<FbxDouble> InteraxialSeparation;
    FbxPropertyT<FbxDouble> ZeroParallax;

    /// In degrees, and in inches.
    FbxPropertyT<FbxDouble> ToeInAdjust;
    FbxPropertyT<FbxDouble> FilmOffsetRightCam;
    FbxPropertyT<FbxDouble> FilmOffsetLeftCam;

    FbxPropertyT<FbxReference> RightCamera;
    FbxPropertyT<FbxReference> LeftCamera;
    FbxPropertyT<FbxString> PrecompFileName;
    FbxPropertyT<FbxString> RelativePrecompFileName;
};

}
