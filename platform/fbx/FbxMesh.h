#pragma once
// Meshes of polygons, with their materials and texture coordinates.

#include "FbxNode.h"

#include <memory>
#include <vector>

namespace fbxsdk
{

/// An array of a layer element.
template <class T>
class FbxLayerElementArrayTemplate
{
public:
    /// @return the index of what was added
    int Add(T const& item)
    {
        mItems.push_back(item);
        return static_cast<int>(mItems.size()) - 1;
    }

    int GetCount() const
    {
        return static_cast<int>(mItems.size());
    }

    /// A default item where there is none.
    T GetAt(int index) const
    {
        return index >= 0 && index < GetCount() ? mItems[static_cast<std::size_t>(index)] : T();
    }

    T operator[](int index) const
    {
        return GetAt(index);
    }

    /// Has no effect where there is no item.
    void SetAt(int index, T const& item)
    {
        if (index >= 0 && index < GetCount())
        {
            mItems[static_cast<std::size_t>(index)] = item;
        }
    }

    bool SetCount(int count)
    {
        mItems.resize(static_cast<std::size_t>(count < 0 ? 0 : count));
        return count >= 0;
    }

    bool Resize(int count)
    {
        return SetCount(count);
    }

    void Clear()
    {
        mItems.clear();
    }

    std::vector<T> const& items() const
    {
        return mItems;
    }

private:
    std::vector<T> mItems;
};

/// Something that a mesh has for its points, corners or polygons.
class FbxLayerElement
{
public:
    enum EType
    {
        eUnknown,
        eNormal,
        eBiNormal,
        eTangent,
        eMaterial,
        ePolygonGroup,
        eUV,
        eVertexColor,
        eSmoothing,
        eVertexCrease,
        eEdgeCrease,
        eHole,
        eUserData,
        eVisibility,
        eTextureDiffuse
    };

    /// What the items belong to.
    enum EMappingMode
    {
        eNone,
        eByControlPoint,
        eByPolygonVertex,
        eByPolygon,
        eByEdge,
        eAllSame
    };

    /// Whether they stand there in order, or an array of indices says which one.
    enum EReferenceMode
    {
        eDirect,
        eIndex,
        eIndexToDirect
    };

    void SetName(char const* name)
    {
        mName = FbxString(name);
    }

    char const* GetName() const
    {
        return mName.Buffer();
    }

    void SetMappingMode(EMappingMode mode)
    {
        mMapping = mode;
    }

    EMappingMode GetMappingMode() const
    {
        return mMapping;
    }

    void SetReferenceMode(EReferenceMode mode)
    {
        mReference = mode;
    }

    EReferenceMode GetReferenceMode() const
    {
        return mReference;
    }

private:
    FbxString mName;
    EMappingMode mMapping = eNone;
    EReferenceMode mReference = eDirect;
};

template <class T>
class FbxLayerElementTemplate : public FbxLayerElement
{
public:
    FbxLayerElementArrayTemplate<T>& GetDirectArray() const
    {
        return mDirect;
    }

    FbxLayerElementArrayTemplate<int>& GetIndexArray() const
    {
        return mIndices;
    }

private:
    mutable FbxLayerElementArrayTemplate<T> mDirect;
    mutable FbxLayerElementArrayTemplate<int> mIndices;
};

/// Texture coordinates; v grows upwards. Mapped by control point or polygon vertex; others
/// aren't written.
using FbxGeometryElementUV = FbxLayerElementTemplate<FbxVector2>;

/// Indices of the node's materials, in the array of indices. Mapped by polygon or all the same.
using FbxGeometryElementMaterial = FbxLayerElementTemplate<FbxSurfaceMaterial*>;

/// Control points and what belongs to them.
class FbxGeometryBase : public FbxNodeAttribute
{
public:
    /// Makes room for this many points at the origin; those before are gone.
    void InitControlPoints(int count);
    int GetControlPointsCount() const;

    /// A point out of range is added behind the last, with those between at the origin; a
    /// negative index has no effect.
    void SetControlPointAt(FbxVector4 const& point, int index);
    FbxVector4 GetControlPointAt(int index) const;

    /// `GetControlPointsCount()` of them.
    FbxVector4* GetControlPoints();

    FbxGeometryElementMaterial* CreateElementMaterial();

    /// @param type has no effect
    FbxGeometryElementUV* CreateElementUV(char const* name,
                                          FbxLayerElement::EType type = FbxLayerElement::eTextureDiffuse);

    int GetElementMaterialCount() const;
    int GetElementUVCount() const;
    FbxGeometryElementMaterial* GetElementMaterial(int index = 0) const;
    FbxGeometryElementUV* GetElementUV(int index = 0) const;

protected:
    FbxGeometryBase(FbxManager& manager, char const* name, std::vector<FbxPropertyDefinition> const& definitions);
    ~FbxGeometryBase() override;

private:
    std::vector<FbxVector4> mPoints;
    std::vector<std::unique_ptr<FbxGeometryElementMaterial>> mMaterials;
    std::vector<std::unique_ptr<FbxGeometryElementUV>> mUVs;
};

class FbxGeometry : public FbxGeometryBase
{
protected:
    using FbxGeometryBase::FbxGeometryBase;
    ~FbxGeometry() override;
};

/// A mesh. Polygons with fewer than three corners or with a corner that is no point aren't
/// written.
class FbxMesh : public FbxGeometry
{
    FBXSDK_OBJECT_DECLARE(FbxMesh);

public:
    EType GetAttributeType() const override;

    /// @param material goes into the material element if that maps by polygon; -1 for none
    void BeginPolygon(int material = -1, int texture = -1, int group = -1, bool legacy = true);

    /// A corner of the polygon that was begun.
    ///
    /// @param textureUVIndex goes into the first UV element's indices if that maps by polygon
    ///                       vertex through indices; -1 for none
    void AddPolygon(int index, int textureUVIndex = -1);
    void EndPolygon();

    void ReservePolygonCount(int count);
    void ReservePolygonVertexCount(int count);
    int GetPolygonCount() const;

    /// The number of corners; 0 for no polygon.
    int GetPolygonSize(int polygon) const;

    /// Where the polygon's corners begin among all; -1 for no polygon.
    int GetPolygonVertexIndex(int polygon) const;

    /// The point of a corner; -1 for none.
    int GetPolygonVertex(int polygon, int corner) const;
    int GetPolygonVertexCount() const;
    int* GetPolygonVertices() const;

private:
    mutable std::vector<int> mCorners;

    /// Of each polygon, where its corners begin.
    std::vector<int> mStarts;
};

}
