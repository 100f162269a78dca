// What the exporters call of OpenUSD, pinned: this file compiles against OpenUSD 22.11 and 24.08 as well
// as against what stands in for it, so neither can drift from the other unseen.

#include <pxr/base/gf/vec2f.h>
#include <pxr/base/gf/vec3d.h>
#include <pxr/base/gf/vec3f.h>
#include <pxr/base/tf/errorMark.h>
#include <pxr/base/tf/token.h>
#include <pxr/base/vt/array.h>
#include <pxr/base/vt/types.h>
#include <pxr/base/vt/value.h>
#include <pxr/usd/sdf/changeBlock.h>
#include <pxr/usd/sdf/layer.h>
#include <pxr/usd/sdf/path.h>
#include <pxr/usd/sdf/primSpec.h>
#include <pxr/usd/sdf/types.h>
#include <pxr/usd/usd/attribute.h>
#include <pxr/usd/usd/prim.h>
#include <pxr/usd/usd/schemaRegistry.h>
#include <pxr/usd/usd/stage.h>
#include <pxr/usd/usd/timeCode.h>
#include <pxr/usd/usdGeom/camera.h>
#include <pxr/usd/usdGeom/mesh.h>
#include <pxr/usd/usdGeom/metrics.h>
#include <pxr/usd/usdGeom/primvar.h>
#include <pxr/usd/usdGeom/primvarsAPI.h>
#include <pxr/usd/usdGeom/tokens.h>
#include <pxr/usd/usdGeom/xform.h>
#include <pxr/usd/usdGeom/xformCommonAPI.h>

#include <string>
#include <type_traits>

PXR_NAMESPACE_USING_DIRECTIVE

namespace
{

template <typename T>
T const& a();

template <typename T>
T& an();

// The result of an expression, exactly or but for a reference to const.
#define GIVES(type, expression) static_assert(std::is_same_v<std::decay_t<decltype(expression)>, type>, #expression)

template <typename From, typename To>
constexpr bool IS_IMPLICIT = std::is_convertible_v<From, To>;

// Base types.
GIVES(std::string, a<TfToken>().GetString());
GIVES(char const*, a<TfToken>().GetText());
GIVES(bool, a<TfToken>() == a<TfToken>());
GIVES(bool, a<TfErrorMark>().IsClean());
GIVES(bool, a<TfErrorMark>().Clear());
static_assert(std::is_same_v<decltype(a<GfVec2f>()[0]), float const&>);
static_assert(std::is_same_v<decltype(a<GfVec3f>()[0]), float const&>);
static_assert(std::is_same_v<decltype(an<GfVec3d>()[0]), double&>);
static_assert(std::is_constructible_v<GfVec3d, double, double, double>);
static_assert(!IS_IMPLICIT<double, GfVec3d>);
static_assert(std::is_same_v<VtVec3fArray, VtArray<GfVec3f>> && std::is_same_v<VtVec2fArray, VtArray<GfVec2f>>);
static_assert(std::is_same_v<VtIntArray, VtArray<int>> && std::is_same_v<VtTokenArray, VtArray<TfToken>>);
static_assert(std::is_same_v<decltype(a<VtIntArray>()[0]), int const&>);
GIVES(void, an<VtIntArray>().push_back(1));
GIVES(void, an<VtIntArray>().reserve(1));
GIVES(std::size_t, a<VtIntArray>().size());
static_assert(std::is_constructible_v<VtValue, float> && !IS_IMPLICIT<float, VtValue>);
GIVES(bool, a<VtValue>().IsEmpty());

// Paths and layers.
static_assert(std::is_constructible_v<SdfPath, std::string> && !IS_IMPLICIT<std::string, SdfPath>);
GIVES(SdfPath, SdfPath::AbsoluteRootPath());
GIVES(SdfPath, a<SdfPath>().AppendPath(a<SdfPath>()));
GIVES(SdfPath, a<SdfPath>().AppendChild(a<TfToken>()));
GIVES(SdfPath, a<SdfPath>().GetParentPath());
GIVES(std::string, a<SdfPath>().GetString());
GIVES(std::string, a<SdfPath>().GetName());
GIVES(bool, a<SdfPath>().IsEmpty());
GIVES(bool, SdfPath::IsValidIdentifier(std::string()));
static_assert(std::is_default_constructible_v<SdfChangeBlock>);
GIVES(SdfPrimSpecHandle, SdfCreatePrimInLayer(a<SdfLayerHandle>(), a<SdfPath>()));
GIVES(SdfPrimSpecHandle, an<SdfLayer>().GetPrimAtPath(a<SdfPath>()));
GIVES(void, an<SdfPrimSpec>().SetSpecifier(SdfSpecifierDef));
GIVES(void, an<SdfPrimSpec>().SetTypeName(std::string()));
GIVES(TfToken, a<SdfPrimSpec>().GetTypeName());
GIVES(SdfSpecifier, a<SdfPrimSpec>().GetSpecifier());
GIVES(void, a<SdfPrimSpecHandle>()->SetSpecifier(SdfSpecifierOver));
GIVES(void, an<SdfLayer>().SetDocumentation(std::string()));
GIVES(std::string, a<SdfLayer>().GetDocumentation());
GIVES(bool, a<SdfLayer>().ExportToString(static_cast<std::string*>(nullptr)));

// Stages.
GIVES(UsdStageRefPtr, UsdStage::CreateInMemory());
static_assert(IS_IMPLICIT<UsdStageRefPtr, UsdStagePtr> && std::is_same_v<UsdStagePtr, UsdStageWeakPtr>);
GIVES(SdfLayerHandle, a<UsdStage>().GetRootLayer());
GIVES(UsdPrim, a<UsdStage>().GetPrimAtPath(a<SdfPath>()));
GIVES(UsdPrim, an<UsdStage>().DefinePrim(a<SdfPath>(), a<TfToken>()));
GIVES(UsdPrim, a<UsdStage>().GetDefaultPrim());
GIVES(void, an<UsdStage>().SetDefaultPrim(a<UsdPrim>()));
GIVES(void, an<UsdStage>().SetStartTimeCode(1.0));
GIVES(void, an<UsdStage>().SetEndTimeCode(1.0));
GIVES(void, a<UsdStage>().SetFramesPerSecond(1.0));
GIVES(void, a<UsdStage>().SetTimeCodesPerSecond(1.0));
GIVES(double, a<UsdStage>().GetTimeCodesPerSecond());
static_assert(IS_IMPLICIT<double, UsdTimeCode> && !IS_IMPLICIT<UsdTimeCode, double>);
GIVES(UsdTimeCode, UsdTimeCode::Default());
GIVES(SdfPath, a<UsdPrim>().GetPath());
GIVES(TfToken, a<UsdPrim>().GetTypeName());
GIVES(bool, a<UsdPrim>().IsDefined());
GIVES(UsdAttribute, a<UsdPrim>().GetAttribute(a<TfToken>()));
GIVES(UsdAttribute, a<UsdPrim>().CreateAttribute(a<TfToken>(), a<SdfValueTypeName>(), true));
static_assert(std::is_constructible_v<bool, UsdPrim> && !IS_IMPLICIT<UsdPrim, bool>);
GIVES(bool, a<UsdAttribute>().Set(1.0F));
GIVES(bool, a<UsdAttribute>().Set(a<VtVec3fArray>(), UsdTimeCode(1.0)));
GIVES(bool, a<UsdAttribute>().Set(a<VtValue>(), UsdTimeCode::Default()));
GIVES(TfToken, UsdSchemaRegistry::GetSchemaTypeName<UsdGeomXform>());

// Geometry.
static_assert(std::is_base_of_v<UsdGeomXformable, UsdGeomXform> && std::is_base_of_v<UsdGeomXformable, UsdGeomCamera> &&
              std::is_base_of_v<UsdGeomPointBased, UsdGeomMesh>);
GIVES(UsdGeomXform, UsdGeomXform::Define(a<UsdStagePtr>(), a<SdfPath>()));
GIVES(UsdGeomXform, UsdGeomXform::Define(a<UsdStageRefPtr>(), a<SdfPath>()));
GIVES(UsdGeomCamera, UsdGeomCamera::Define(a<UsdStagePtr>(), a<SdfPath>()));
GIVES(UsdGeomMesh, UsdGeomMesh::Define(a<UsdStagePtr>(), a<SdfPath>()));
GIVES(UsdPrim, a<UsdGeomXform>().GetPrim());
GIVES(UsdAttribute, a<UsdGeomCamera>().CreateFocalLengthAttr());
GIVES(UsdAttribute, a<UsdGeomCamera>().CreateClippingRangeAttr(a<VtValue>()));
GIVES(UsdAttribute, a<UsdGeomCamera>().CreateHorizontalApertureAttr(a<VtValue>(), true));
GIVES(UsdAttribute, a<UsdGeomCamera>().CreateVerticalApertureAttr(a<VtValue>()));
GIVES(UsdAttribute, a<UsdGeomMesh>().CreatePointsAttr());
GIVES(UsdAttribute, a<UsdGeomMesh>().CreateExtentAttr());
GIVES(UsdAttribute, a<UsdGeomMesh>().CreateFaceVertexCountsAttr(a<VtValue>()));
GIVES(UsdAttribute, a<UsdGeomMesh>().CreateFaceVertexIndicesAttr(a<VtValue>()));
GIVES(UsdAttribute, a<UsdGeomMesh>().CreateSubdivisionSchemeAttr(a<VtValue>()));
GIVES(bool, UsdGeomPointBased::ComputeExtent(a<VtVec3fArray>(), static_cast<VtVec3fArray*>(nullptr)));
static_assert(UsdGeomXformCommonAPI::RotationOrderXYZ == 0);
static_assert(std::is_constructible_v<UsdGeomXformCommonAPI, UsdPrim> &&
              std::is_constructible_v<UsdGeomXformCommonAPI, UsdGeomXform>);
static_assert(!IS_IMPLICIT<UsdPrim, UsdGeomXformCommonAPI>);
GIVES(bool, a<UsdGeomXformCommonAPI>().SetTranslate(a<GfVec3d>(), UsdTimeCode(1.0)));
GIVES(bool, a<UsdGeomXformCommonAPI>().SetRotate(a<GfVec3f>()));
GIVES(bool,
      a<UsdGeomXformCommonAPI>().SetRotate(a<GfVec3f>(), UsdGeomXformCommonAPI::RotationOrderZYX, UsdTimeCode(1.0)));
GIVES(bool, a<UsdGeomXformCommonAPI>().SetScale(a<GfVec3f>(), UsdTimeCode(1.0)));
GIVES(UsdGeomPrimvar, UsdGeomPrimvarsAPI(a<UsdGeomMesh>())
                          .CreatePrimvar(a<TfToken>(), SdfValueTypeNames->TexCoord2fArray, a<TfToken>()));
GIVES(bool, a<UsdGeomPrimvar>().Set(a<VtVec2fArray>()));
GIVES(bool, UsdGeomSetStageUpAxis(a<UsdStageWeakPtr>(), a<TfToken>()));
GIVES(bool, UsdGeomSetStageMetersPerUnit(a<UsdStageWeakPtr>(), 1.0));
GIVES(TfToken, UsdGeomTokens->faceVarying);
GIVES(TfToken, UsdGeomTokens->none);
GIVES(TfToken, UsdGeomTokens->y);

}
