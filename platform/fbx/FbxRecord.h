#pragma once
// How properties are defined and kept.

#include "FbxTypes.h"

#include <memory>
#include <string>
#include <vector>

namespace fbxsdk
{

class FbxAnimCurveNode;
class FbxObject;

/// The types of properties, as files name them.
enum class FbxPropertyType
{
    Int,
    Enum,
    Bool,
    Double,
    Number,
    Time,
    String,
    Vector3D,
    Vector,
    ColorRGB,
    Color,
    /// One number, of a type that is called like the property.
    OwnNumber,
    /// The same of three.
    OwnVector,
    VisibilityInheritance,
    ULongLong,
    /// Points to an object; in the file that is a connection.
    Object,
    Compound
};

/// A property that a class has, and its default.
struct FbxPropertyDefinition
{
    char const* name;
    FbxPropertyType type;
    double numbers[3] = {};
    char const* text = "";
};

/// How many numbers a property of this type holds.
int fbxNumberCount(FbxPropertyType type);

/// Whether curves can drive it.
bool fbxIsAnimatable(FbxPropertyType type);

/// A property of an object, and its value.
struct FbxPropertyRecord
{
    /// What isn't numbers.
    struct Other
    {
        FbxLongLong ticks = 0;
        FbxString text;
        FbxObject* object = nullptr;
    };

    FbxObject* owner = nullptr;
    FbxPropertyDefinition const* definition = nullptr;
    double numbers[3] = {};
    std::unique_ptr<Other> other;

    /// The first of its curve nodes; each knows the next.
    FbxAnimCurveNode* curveNode = nullptr;
};

using FbxDefinitions = std::vector<FbxPropertyDefinition>;

FbxDefinitions const& fbxNodeDefinitions();
FbxDefinitions const& fbxNullDefinitions();
FbxDefinitions const& fbxCameraDefinitions();
FbxDefinitions const& fbxCameraStereoDefinitions();
FbxDefinitions const& fbxMeshDefinitions();
FbxDefinitions const& fbxLambertDefinitions();
FbxDefinitions const& fbxStackDefinitions();
FbxDefinitions const& fbxLayerDefinitions();
FbxDefinitions const& fbxCurveNodeDefinitions();
FbxDefinitions const& fbxSettingsDefinitions();

}
