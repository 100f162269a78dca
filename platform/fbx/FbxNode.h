#pragma once
// Nodes of the scene's tree, what they can carry, and their materials.

#include "FbxObject.h"
#include "FbxProperty.h"

#include <vector>

namespace fbxsdk
{

class FbxCamera;
class FbxMesh;
class FbxNode;
class FbxNull;
class FbxSurfaceMaterial;

class FbxTransform
{
public:
    /// How a node takes on rotation and scaling of its parent. eInheritRSrs multiplies matrices.
    enum EInheritType
    {
        eInheritRrSs,
        eInheritRSrs,
        eInheritRrs
    };
};

/// What makes a node a camera, a mesh or a null.
class FbxNodeAttribute : public FbxObject
{
public:
    enum EType
    {
        eUnknown,
        eNull,
        eMarker,
        eSkeleton,
        eMesh,
        eNurbs,
        ePatch,
        eCamera,
        eCameraStereo
    };

    virtual EType GetAttributeType() const = 0;

    /// The node that carries this attribute, or null.
    FbxNode* GetNode(int index = 0) const;

    FbxPropertyT<FbxDouble3> Color;

protected:
    FbxNodeAttribute(FbxManager& manager, char const* name, std::vector<FbxPropertyDefinition> const& definitions);
    ~FbxNodeAttribute() override;

    void forget(FbxDoomed const& doomed) override;

private:
    friend class FbxNode;
    FbxNode* mNode = nullptr;
};

/// A place in space that programs show as a cross.
class FbxNull : public FbxNodeAttribute
{
    FBXSDK_OBJECT_DECLARE(FbxNull);

public:
    enum ELook
    {
        eNone,
        eCross
    };

    EType GetAttributeType() const override;

    /// How large it is shown, in units of the scene; 100.
    FbxPropertyT<FbxDouble> Size;
    FbxPropertyT<ELook> Look;
};

/// A node of the tree: a transform, an attribute, materials, and nodes below it.
///
/// The local matrix is translation, pre-rotation, rotation, inverse of post-rotation, scaling.
class FbxNode : public FbxObject
{
    FBXSDK_OBJECT_DECLARE(FbxNode);

public:
    enum EPivotSet
    {
        eSourcePivot,
        eDestinationPivot
    };

    enum EShadingMode
    {
        eHardShading,
        eWireFrame,
        eFlatShading,
        eLightShading,
        eTextureShading,
        eFullShading
    };

    /// In units of the scene, degrees, and factors.
    FbxPropertyT<FbxDouble3> LclTranslation;
    FbxPropertyT<FbxDouble3> LclRotation;
    FbxPropertyT<FbxDouble3> LclScaling;

    FbxPropertyT<FbxDouble> Visibility;
    FbxPropertyT<FbxBool> VisibilityInheritance;
    FbxPropertyT<EFbxRotationOrder> RotationOrder;

    /// Whether readers look at the rotation order and the two rotations below. On.
    FbxPropertyT<FbxBool> RotationActive;
    FbxPropertyT<FbxDouble3> PreRotation;
    FbxPropertyT<FbxDouble3> PostRotation;

    /// eInheritRSrs, where the SDK starts with eInheritRrSs: matrices are multiplied.
    FbxPropertyT<FbxTransform::EInheritType> InheritType;
    FbxPropertyT<FbxBool> Show;

    void SetRotationOrder(EPivotSet pivotSet, EFbxRotationOrder order);
    void SetRotationActive(bool active);
    void SetPreRotation(EPivotSet pivotSet, FbxVector4 degrees);
    void SetPostRotation(EPivotSet pivotSet, FbxVector4 degrees);

    /// Has no effect on what is written.
    void SetShadingMode(EShadingMode mode);

    /// Gives the node an attribute in place of the one before, which is returned. An attribute
    /// of another node leaves that one.
    FbxNodeAttribute* SetNodeAttribute(FbxNodeAttribute* attribute);
    FbxNodeAttribute* GetNodeAttribute();
    FbxNodeAttribute const* GetNodeAttribute() const;

    /// The attribute when it is of this class, or null.
    FbxCamera* GetCamera();
    FbxMesh* GetMesh();
    FbxNull* GetNull();

    /// Hangs a node below this one, and takes it from where it was.
    ///
    /// @return false for null, the node itself or one above it
    bool AddChild(FbxNode* child);
    FbxNode* RemoveChild(FbxNode* child);
    FbxNode* GetParent();
    FbxNode const* GetParent() const;

    /// @param recursive all nodes below
    int GetChildCount(bool recursive = false) const;
    FbxNode* GetChild(int index);
    FbxNode const* GetChild(int index) const;

    /// The first node of this name below this one, or null. A walk: keep your own map where
    /// many are looked up.
    ///
    /// @param initial looks at the node itself as well
    FbxNode* FindChild(char const* name, bool recursive = true, bool initial = false);

    /// @return the material's index on this node, by which polygons refer to it
    int AddMaterial(FbxSurfaceMaterial* material);
    int GetMaterialCount() const;
    FbxSurfaceMaterial* GetMaterial(int index) const;

private:
    void collectDoomed(std::vector<FbxObject*>& doomed, bool recursive) override;
    void forget(FbxDoomed const& doomed) override;
    bool isBelow(FbxNode const* other) const;

    FbxNode* mParent = nullptr;
    std::vector<FbxNode*> mChildren;
    FbxNodeAttribute* mAttribute = nullptr;
    std::vector<FbxSurfaceMaterial*> mMaterials;
};

/// How a surface looks.
class FbxSurfaceMaterial : public FbxObject
{
public:
    FbxPropertyT<FbxString> ShadingModel;
    FbxPropertyT<FbxBool> MultiLayer;

protected:
    FbxSurfaceMaterial(FbxManager& manager, char const* name, std::vector<FbxPropertyDefinition> const& definitions);
    ~FbxSurfaceMaterial() override;
};

/// A matt surface. A colour counts times its factor.
class FbxSurfaceLambert : public FbxSurfaceMaterial
{
    FBXSDK_OBJECT_DECLARE(FbxSurfaceLambert);

public:
    FbxPropertyT<FbxDouble3> Emissive;
    FbxPropertyT<FbxDouble> EmissiveFactor;
    FbxPropertyT<FbxDouble3> Ambient;
    FbxPropertyT<FbxDouble> AmbientFactor;
    FbxPropertyT<FbxDouble3> Diffuse;
    FbxPropertyT<FbxDouble> DiffuseFactor;
    FbxPropertyT<FbxDouble3> NormalMap;
    FbxPropertyT<FbxDouble3> Bump;
    FbxPropertyT<FbxDouble> BumpFactor;
    FbxPropertyT<FbxDouble3> TransparentColor;
    FbxPropertyT<FbxDouble> TransparencyFactor;
};

}
