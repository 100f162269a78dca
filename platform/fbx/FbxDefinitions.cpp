// The properties of every class with their defaults, in the words that files use.

#include "FbxRecord.h"

namespace fbxsdk
{

using Type = FbxPropertyType;

int fbxNumberCount(FbxPropertyType type)
{
    switch (type)
    {
    case Type::Vector3D:
    case Type::Vector:
    case Type::ColorRGB:
    case Type::Color:
    case Type::OwnVector:
        return 3;
    case Type::Time:
    case Type::ULongLong:
    case Type::String:
    case Type::Object:
    case Type::Compound:
        return 0;
    default:
        return 1;
    }
}

bool fbxIsAnimatable(FbxPropertyType type)
{
    switch (type)
    {
    case Type::Number:
    case Type::Vector:
    case Type::Color:
    case Type::OwnNumber:
    case Type::OwnVector:
        return true;
    default:
        return false;
    }
}

FbxDefinitions const& fbxNodeDefinitions()
{
    static FbxDefinitions const list{
        {"RotationOrder", Type::Enum},
        {"RotationActive", Type::Bool},
        {"InheritType", Type::Enum},
        {"PreRotation", Type::Vector3D},
        {"PostRotation", Type::Vector3D},
        {"ScalingMax", Type::Vector3D},
        {"DefaultAttributeIndex", Type::Int, {-1}},
        {"Lcl Translation", Type::OwnVector},
        {"Lcl Rotation", Type::OwnVector},
        {"Lcl Scaling", Type::OwnVector, {1, 1, 1}},
        {"Show", Type::Bool, {1}},
        {"Visibility", Type::OwnNumber, {1}},
        {"Visibility Inheritance", Type::VisibilityInheritance, {1}},
    };
    return list;
}

FbxDefinitions const& fbxNullDefinitions()
{
    static FbxDefinitions const list{
        {"Color", Type::ColorRGB, {0.8, 0.8, 0.8}},
        {"Size", Type::Double, {100}},
        {"Look", Type::Enum, {1}},
    };
    return list;
}

FbxDefinitions const& fbxCameraDefinitions()
{
    static FbxDefinitions const list{
        {"Color", Type::ColorRGB, {0.8, 0.8, 0.8}},
        {"Position", Type::Vector},
        {"UpVector", Type::Vector, {0, 1, 0}},
        {"InterestPosition", Type::Vector},
        {"Roll", Type::OwnNumber},
        {"OpticalCenterX", Type::OwnNumber},
        {"OpticalCenterY", Type::OwnNumber},
        {"BackgroundColor", Type::Color, {0.63, 0.63, 0.63}},
        {"TurnTable", Type::Number},
        {"DisplayTurnTableIcon", Type::Bool},
        {"UseMotionBlur", Type::Bool},
        {"UseRealTimeMotionBlur", Type::Bool, {1}},
        {"Motion Blur Intensity", Type::Number, {1}},
        {"AspectRatioMode", Type::Enum},
        {"AspectWidth", Type::Double, {320}},
        {"AspectHeight", Type::Double, {200}},
        {"PixelAspectRatio", Type::Double, {1}},
        {"FilmOffsetX", Type::Number},
        {"FilmOffsetY", Type::Number},
        {"FilmWidth", Type::Double, {0.816}},
        {"FilmHeight", Type::Double, {0.612}},
        {"FilmAspectRatio", Type::Double, {1.3333333333333333}},
        {"FilmSqueezeRatio", Type::Double, {1}},
        {"FilmFormatIndex", Type::Enum},
        {"PreScale", Type::Number, {1}},
        {"FilmTranslateX", Type::Number},
        {"FilmTranslateY", Type::Number},
        {"FilmRollPivotX", Type::Number},
        {"FilmRollPivotY", Type::Number},
        {"FilmRollValue", Type::Number},
        {"FilmRollOrder", Type::Enum},
        {"ApertureMode", Type::Enum, {2}},
        {"GateFit", Type::Enum},
        {"FieldOfView", Type::OwnNumber, {25.114999771118164}},
        {"FieldOfViewX", Type::OwnNumber, {40}},
        {"FieldOfViewY", Type::OwnNumber, {40}},
        {"FocalLength", Type::Number, {34.893276216726278}},
        {"CameraFormat", Type::Enum},
        {"UseFrameColor", Type::Bool},
        {"FrameColor", Type::ColorRGB, {0.3, 0.3, 0.3}},
        {"ShowName", Type::Bool, {1}},
        {"ShowInfoOnMoving", Type::Bool, {1}},
        {"ShowGrid", Type::Bool, {1}},
        {"ShowOpticalCenter", Type::Bool},
        {"ShowAzimut", Type::Bool, {1}},
        {"ShowTimeCode", Type::Bool},
        {"ShowAudio", Type::Bool},
        {"AudioColor", Type::Vector3D, {0, 1, 0}},
        {"NearPlane", Type::Double, {10}},
        {"FarPlane", Type::Double, {4000}},
        {"AutoComputeClipPanes", Type::Bool},
        {"ViewCameraToLookAt", Type::Bool, {1}},
        {"ViewFrustumNearFarPlane", Type::Bool},
        {"ViewFrustumBackPlaneMode", Type::Enum, {2}},
        {"BackPlaneDistance", Type::Number, {4000}},
        {"BackPlaneDistanceMode", Type::Enum, {1}},
        {"ViewFrustumFrontPlaneMode", Type::Enum, {2}},
        {"FrontPlaneDistance", Type::Number, {10}},
        {"FrontPlaneDistanceMode", Type::Enum, {1}},
        {"LockMode", Type::Bool},
        {"LockInterestNavigation", Type::Bool},
        {"BackPlateFitImage", Type::Bool},
        {"BackPlateCrop", Type::Bool},
        {"BackPlateCenter", Type::Bool, {1}},
        {"BackPlateKeepRatio", Type::Bool, {1}},
        {"BackgroundAlphaTreshold", Type::Double, {0.5}}, // spelled so in files
        {"BackPlaneOffsetX", Type::Number},
        {"BackPlaneOffsetY", Type::Number},
        {"BackPlaneRotation", Type::Number},
        {"BackPlaneScaleX", Type::Number, {1}},
        {"BackPlaneScaleY", Type::Number, {1}},
        {"ShowBackplate", Type::Bool, {1}},
        {"Background Texture", Type::Object},
        {"FrontPlateFitImage", Type::Bool, {1}},
        {"FrontPlateCrop", Type::Bool},
        {"FrontPlateCenter", Type::Bool, {1}},
        {"FrontPlateKeepRatio", Type::Bool, {1}},
        {"Foreground Opacity", Type::Double, {1}},
        {"ShowFrontplate", Type::Bool, {1}},
        {"FrontPlaneOffsetX", Type::Number},
        {"FrontPlaneOffsetY", Type::Number},
        {"FrontPlaneRotation", Type::Number},
        {"FrontPlaneScaleX", Type::Number, {1}},
        {"FrontPlaneScaleY", Type::Number, {1}},
        {"Foreground Texture", Type::Object},
        {"DisplaySafeArea", Type::Bool},
        {"DisplaySafeAreaOnRender", Type::Bool},
        {"SafeAreaDisplayStyle", Type::Enum, {1}},
        {"SafeAreaAspectRatio", Type::Double, {1.33333}},
        {"Use2DMagnifierZoom", Type::Bool},
        {"2D Magnifier Zoom", Type::Number, {100}},
        {"2D Magnifier X", Type::Number, {50}},
        {"2D Magnifier Y", Type::Number, {50}},
        {"CameraProjectionType", Type::Enum},
        {"OrthoZoom", Type::Double, {1}},
        {"UseRealTimeDOFAndAA", Type::Bool},
        {"UseDepthOfField", Type::Bool},
        {"FocusSource", Type::Enum},
        {"FocusAngle", Type::Double, {3.5}},
        {"FocusDistance", Type::Double, {200}},
        {"UseAntialiasing", Type::Bool},
        {"AntialiasingIntensity", Type::Double, {0.77777}},
        {"AntialiasingMethod", Type::Enum},
        {"UseAccumulationBuffer", Type::Bool},
        {"FrameSamplingCount", Type::Int, {7}},
        {"FrameSamplingType", Type::Enum, {1}},
    };
    return list;
}

FbxDefinitions const& fbxCameraStereoDefinitions()
{
    static FbxDefinitions const list = []
    {
        FbxDefinitions all = fbxCameraDefinitions();
        all.insert(all.end(), {
                                  {"Stereo", Type::Enum, {2}},
                                  {"InteraxialSeparation", Type::Number, {6.35}},
                                  {"ZeroParallax", Type::Number, {254}},
                                  {"ToeInAdjust", Type::Number},
                                  {"FilmOffsetRightCam", Type::Number},
                                  {"FilmOffsetLeftCam", Type::Number},
                                  {"RightCamera", Type::Object},
                                  {"LeftCamera", Type::Object},
                                  {"PrecompFileName", Type::String},
                                  {"RelativePrecompFileName", Type::String},
                              });
        return all;
    }();
    return list;
}

FbxDefinitions const& fbxMeshDefinitions()
{
    static FbxDefinitions const list{
        {"Color", Type::ColorRGB, {0.8, 0.8, 0.8}},
        {"BBoxMin", Type::Vector3D},
        {"BBoxMax", Type::Vector3D},
        {"Primary Visibility", Type::Bool, {1}},
        {"Casts Shadows", Type::Bool, {1}},
        {"Receive Shadows", Type::Bool, {1}},
    };
    return list;
}

FbxDefinitions const& fbxLambertDefinitions()
{
    static FbxDefinitions const list{
        {"ShadingModel", Type::String, {}, "Lambert"},
        {"MultiLayer", Type::Bool},
        {"EmissiveColor", Type::Color},
        {"EmissiveFactor", Type::Number, {1}},
        {"AmbientColor", Type::Color, {0.2, 0.2, 0.2}},
        {"AmbientFactor", Type::Number, {1}},
        {"DiffuseColor", Type::Color, {0.8, 0.8, 0.8}},
        {"DiffuseFactor", Type::Number, {1}},
        {"Bump", Type::Vector3D},
        {"NormalMap", Type::Vector3D},
        {"BumpFactor", Type::Double, {1}},
        {"TransparentColor", Type::Color},
        {"TransparencyFactor", Type::Number},
        {"DisplacementColor", Type::ColorRGB},
        {"DisplacementFactor", Type::Double, {1}},
        {"VectorDisplacementColor", Type::ColorRGB},
        {"VectorDisplacementFactor", Type::Double, {1}},
    };
    return list;
}

FbxDefinitions const& fbxStackDefinitions()
{
    static FbxDefinitions const list{
        {"Description", Type::String},  {"LocalStart", Type::Time},    {"LocalStop", Type::Time},
        {"ReferenceStart", Type::Time}, {"ReferenceStop", Type::Time},
    };
    return list;
}

FbxDefinitions const& fbxLayerDefinitions()
{
    static FbxDefinitions const list{
        {"Weight", Type::Number, {100}},
        {"Mute", Type::Bool},
        {"Solo", Type::Bool},
        {"Lock", Type::Bool},
        {"Color", Type::ColorRGB, {0.8, 0.8, 0.8}},
        {"BlendMode", Type::Enum},
        {"RotationAccumulationMode", Type::Enum},
        {"ScaleAccumulationMode", Type::Enum},
        {"BlendModeBypass", Type::ULongLong},
    };
    return list;
}

FbxDefinitions const& fbxCurveNodeDefinitions()
{
    static FbxDefinitions const list{{"d", Type::Compound}};
    return list;
}

FbxDefinitions const& fbxSettingsDefinitions()
{
    static FbxDefinitions const list{
        {"UpAxis", Type::Int, {1}},
        {"UpAxisSign", Type::Int, {1}},
        {"FrontAxis", Type::Int, {2}},
        {"FrontAxisSign", Type::Int, {1}},
        {"CoordAxis", Type::Int, {0}},
        {"CoordAxisSign", Type::Int, {1}},
        {"OriginalUpAxis", Type::Int, {1}},
        {"OriginalUpAxisSign", Type::Int, {1}},
        {"UnitScaleFactor", Type::Double, {1}},
        {"OriginalUnitScaleFactor", Type::Double, {1}},
        {"AmbientColor", Type::ColorRGB},
        {"DefaultCamera", Type::String, {}, "Producer Perspective"},
        {"TimeMode", Type::Enum},
        {"TimeProtocol", Type::Enum, {2}},
        {"SnapOnFrameMode", Type::Enum},
        {"TimeSpanStart", Type::Time},
        {"TimeSpanStop", Type::Time},
        {"CustomFrameRate", Type::Double, {-1}},
        {"TimeMarker", Type::Compound},
        {"CurrentTimeMarker", Type::Int, {-1}},
    };
    return list;
}

}
