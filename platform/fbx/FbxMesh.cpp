#include "FbxMesh.h"

#include "FbxManagerData.h"

#include <algorithm>

namespace fbxsdk
{

FBXSDK_OBJECT_IMPLEMENT(FbxMesh);

FbxGeometryBase::FbxGeometryBase(FbxManager& manager, char const* name, FbxDefinitions const& definitions)
    : FbxNodeAttribute(manager, name, definitions)
{
}

FbxGeometryBase::~FbxGeometryBase() = default;
FbxGeometry::~FbxGeometry() = default;

void FbxGeometryBase::InitControlPoints(int count)
{
    mPoints.assign(static_cast<std::size_t>(std::max(count, 0)), FbxVector4(0, 0, 0));
}

int FbxGeometryBase::GetControlPointsCount() const
{
    return static_cast<int>(mPoints.size());
}

void FbxGeometryBase::SetControlPointAt(FbxVector4 const& point, int index)
{
    if (index < 0)
    {
        return;
    }
    auto const place = static_cast<std::size_t>(index);
    if (place >= mPoints.size())
    {
        mPoints.resize(place + 1, FbxVector4(0, 0, 0));
    }
    mPoints[place] = point;
}

FbxVector4 FbxGeometryBase::GetControlPointAt(int index) const
{
    return index >= 0 && index < GetControlPointsCount() ? mPoints[static_cast<std::size_t>(index)]
                                                         : FbxVector4(0, 0, 0);
}

FbxVector4* FbxGeometryBase::GetControlPoints()
{
    return mPoints.data();
}

FbxGeometryElementMaterial* FbxGeometryBase::CreateElementMaterial()
{
    mMaterials.push_back(std::make_unique<FbxGeometryElementMaterial>());
    return mMaterials.back().get();
}

FbxGeometryElementUV* FbxGeometryBase::CreateElementUV(char const* name, FbxLayerElement::EType)
{
    mUVs.push_back(std::make_unique<FbxGeometryElementUV>());
    mUVs.back()->SetName(name);
    return mUVs.back().get();
}

int FbxGeometryBase::GetElementMaterialCount() const
{
    return static_cast<int>(mMaterials.size());
}

int FbxGeometryBase::GetElementUVCount() const
{
    return static_cast<int>(mUVs.size());
}

FbxGeometryElementMaterial* FbxGeometryBase::GetElementMaterial(int index) const
{
    return index >= 0 && index < GetElementMaterialCount() ? mMaterials[static_cast<std::size_t>(index)].get()
                                                           : nullptr;
}

FbxGeometryElementUV* FbxGeometryBase::GetElementUV(int index) const
{
    return index >= 0 && index < GetElementUVCount() ? mUVs[static_cast<std::size_t>(index)].get() : nullptr;
}

FbxMesh::FbxMesh(FbxManager& manager, char const* name) : FbxGeometry(manager, name, fbxMeshDefinitions())
{
}

FbxNodeAttribute::EType FbxMesh::GetAttributeType() const
{
    return eMesh;
}

void FbxMesh::BeginPolygon(int material, int, int, bool)
{
    mStarts.push_back(static_cast<int>(mCorners.size()));
    FbxGeometryElementMaterial const* const element = GetElementMaterial();
    if (element && element->GetMappingMode() == FbxLayerElement::eByPolygon)
    {
        element->GetIndexArray().Add(material);
    }
}

void FbxMesh::AddPolygon(int index, int textureUVIndex)
{
    if (mStarts.empty())
    {
        return;
    }
    mCorners.push_back(index);
    FbxGeometryElementUV const* const element = GetElementUV();
    if (textureUVIndex >= 0 && element && element->GetMappingMode() == FbxLayerElement::eByPolygonVertex &&
        element->GetReferenceMode() == FbxLayerElement::eIndexToDirect)
    {
        element->GetIndexArray().SetCount(GetPolygonVertexCount());
        element->GetIndexArray().SetAt(GetPolygonVertexCount() - 1, textureUVIndex);
    }
}

void FbxMesh::EndPolygon()
{
}

void FbxMesh::ReservePolygonCount(int count)
{
    mStarts.reserve(static_cast<std::size_t>(std::max(count, 0)));
}

void FbxMesh::ReservePolygonVertexCount(int count)
{
    mCorners.reserve(static_cast<std::size_t>(std::max(count, 0)));
}

int FbxMesh::GetPolygonCount() const
{
    return static_cast<int>(mStarts.size());
}

int FbxMesh::GetPolygonSize(int polygon) const
{
    if (polygon < 0 || polygon >= GetPolygonCount())
    {
        return 0;
    }
    auto const place = static_cast<std::size_t>(polygon);
    int const end = place + 1 < mStarts.size() ? mStarts[place + 1] : GetPolygonVertexCount();
    return end - mStarts[place];
}

int FbxMesh::GetPolygonVertexIndex(int polygon) const
{
    return polygon >= 0 && polygon < GetPolygonCount() ? mStarts[static_cast<std::size_t>(polygon)] : -1;
}

int FbxMesh::GetPolygonVertex(int polygon, int corner) const
{
    if (corner < 0 || corner >= GetPolygonSize(polygon))
    {
        return -1;
    }
    return mCorners[static_cast<std::size_t>(mStarts[static_cast<std::size_t>(polygon)] + corner)];
}

int FbxMesh::GetPolygonVertexCount() const
{
    return static_cast<int>(mCorners.size());
}

int* FbxMesh::GetPolygonVertices() const
{
    return mCorners.data();
}

}
