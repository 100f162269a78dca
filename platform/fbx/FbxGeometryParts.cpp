// Meshes, in the form that readers agree on: texture coordinates by polygon vertex through indices,
// and materials by polygon or the same for all.

#include "FbxParts.h"

#include <algorithm>

namespace fbxsdk
{

namespace
{

constexpr int layerElementVersion = 101;
constexpr int layerVersion = 100;

/// The index as it is when it lies in 0 .. count - 1, else 0.
int inside(int index, int count)
{
    return index >= 0 && index < count ? index : 0;
}

}

void FbxParts::geometry(FbxMesh const& mesh, int materialCount)
{
    int const pointCount = mesh.GetControlPointsCount();
    std::vector<double> coordinates;
    coordinates.reserve(static_cast<std::size_t>(pointCount) * 3);
    for (int i = 0; i < pointCount; ++i)
    {
        FbxVector4 const point = mesh.GetControlPointAt(i);
        coordinates.insert(coordinates.end(), {point[0], point[1], point[2]});
    }

    int const* const all = mesh.GetPolygonVertices();
    std::vector<int> polygons;
    std::vector<int> points;
    polygons.reserve(static_cast<std::size_t>(mesh.GetPolygonCount()));
    points.reserve(static_cast<std::size_t>(mesh.GetPolygonVertexCount()));
    for (int polygon = 0; polygon < mesh.GetPolygonCount(); ++polygon)
    {
        int const* const first = all + mesh.GetPolygonVertexIndex(polygon);
        int const* const end = first + mesh.GetPolygonSize(polygon);
        if (end - first >= 3 && std::all_of(first, end, [&](int point) { return point >= 0 && point < pointCount; }))
        {
            polygons.push_back(polygon);
            points.insert(points.end(), first, end);
            points.back() = -points.back() - 1; // marks the last one
        }
    }
    m_out.array("Vertices", coordinates);
    m_out.array("PolygonVertexIndex", points);

    int uvCount = 0;
    for (int i = 0; i < mesh.GetElementUVCount(); ++i)
    {
        FbxGeometryElementUV const& element = *mesh.GetElementUV(i);
        bool const isMapped = element.GetMappingMode() == FbxLayerElement::eByControlPoint ||
                              element.GetMappingMode() == FbxLayerElement::eByPolygonVertex;
        if (isMapped && element.GetDirectArray().GetCount() > 0)
        {
            uvElement(mesh, element, uvCount++, polygons);
        }
    }
    if (materialCount > 0)
    {
        materialElement(mesh.GetElementMaterial(), polygons);
    }
    layers(uvCount, materialCount > 0);
}

void FbxParts::uvElement(FbxMesh const& mesh, FbxGeometryElementUV const& element, int index,
                         std::vector<int> const& polygons)
{
    std::vector<FbxVector2> const& direct = element.GetDirectArray().items();
    std::vector<double> coordinates;
    coordinates.reserve(direct.size() * 2);
    for (FbxVector2 const& uv : direct)
    {
        coordinates.insert(coordinates.end(), {uv[0], uv[1]});
    }
    bool const isByPoint = element.GetMappingMode() == FbxLayerElement::eByControlPoint;
    bool const isDirect = element.GetReferenceMode() == FbxLayerElement::eDirect;
    std::vector<int> indices;
    indices.reserve(static_cast<std::size_t>(mesh.GetPolygonVertexCount()));
    for (int const polygon : polygons)
    {
        int const first = mesh.GetPolygonVertexIndex(polygon);
        for (int corner = first; corner < first + mesh.GetPolygonSize(polygon); ++corner)
        {
            int const item = isByPoint ? mesh.GetPolygonVertices()[corner] : corner;
            indices.push_back(
                inside(isDirect ? item : element.GetIndexArray().GetAt(item), static_cast<int>(direct.size())));
        }
    }
    m_out.open("LayerElementUV", index);
    m_out.leaf("Version", layerElementVersion);
    m_out.leaf("Name", element.GetName());
    m_out.leaf("MappingInformationType", "ByPolygonVertex");
    m_out.leaf("ReferenceInformationType", "IndexToDirect");
    m_out.array("UV", coordinates);
    m_out.array("UVIndex", indices);
    m_out.close();
}

void FbxParts::materialElement(FbxGeometryElementMaterial const* element, std::vector<int> const& polygons)
{
    bool const isByPolygon = element && element->GetMappingMode() == FbxLayerElement::eByPolygon;
    std::vector<int> indices;
    auto const add = [&](int item)
    { indices.push_back(element ? std::max(element->GetIndexArray().GetAt(item), 0) : 0); };
    if (isByPolygon)
    {
        std::for_each(polygons.begin(), polygons.end(), add);
    }
    else
    {
        add(0);
    }
    m_out.open("LayerElementMaterial", 0);
    m_out.leaf("Version", layerElementVersion);
    m_out.leaf("Name", element ? element->GetName() : "");
    m_out.leaf("MappingInformationType", isByPolygon ? "ByPolygon" : "AllSame");
    m_out.leaf("ReferenceInformationType", "IndexToDirect");
    m_out.array("Materials", indices);
    m_out.close();
}

void FbxParts::layers(int uvCount, bool hasMaterial)
{
    auto const entry = [this](char const* type, int index)
    {
        m_out.open("LayerElement");
        m_out.leaf("Type", type);
        m_out.leaf("TypedIndex", index);
        m_out.close();
    };
    for (int i = 0; i < std::max(uvCount, 1); ++i)
    {
        m_out.open("Layer", i);
        m_out.leaf("Version", layerVersion);
        if (i < uvCount)
        {
            entry("LayerElementUV", i);
        }
        if (i == 0 && hasMaterial)
        {
            entry("LayerElementMaterial", 0);
        }
        m_out.close();
    }
}

}
