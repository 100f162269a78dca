// What stands in for OpenUSD does what the real one does; the texts here are those that OpenUSD 25.11 wrote
// for the same calls.

#include <gtest/gtest.h>

#include <pxr/base/tf/errorMark.h>
#include <pxr/usd/sdf/changeBlock.h>
#include <pxr/usd/sdf/layer.h>
#include <pxr/usd/usdGeom/camera.h>
#include <pxr/usd/usdGeom/mesh.h>
#include <pxr/usd/usdGeom/metrics.h>
#include <pxr/usd/usdGeom/primvarsAPI.h>
#include <pxr/usd/usdGeom/tokens.h>
#include <pxr/usd/usdGeom/xform.h>
#include <pxr/usd/usdGeom/xformCommonAPI.h>

#include <cmath>
#include <limits>

PXR_NAMESPACE_USING_DIRECTIVE

namespace
{

std::string textOf(UsdStageRefPtr const& stage)
{
    std::string text;
    stage->GetRootLayer()->ExportToString(&text);
    return text;
}

// The text of what stands behind the last " = " of a line that begins with that name.
std::string valueIn(std::string const& text, std::string const& name)
{
    std::size_t const at = text.find(name);
    std::size_t const value = text.find(" = ", at) + 3;
    return at == std::string::npos ? "none" : text.substr(value, text.find('\n', value) - value);
}

TEST(UsdStage, TextIsThatOfOpenUSD)
{
    UsdStageRefPtr const stage = UsdStage::CreateInMemory();
    EXPECT_EQ(textOf(stage), "#usda 1.0\n\n");
    stage->SetStartTimeCode(1001);
    stage->SetEndTimeCode(1010.5);
    stage->SetFramesPerSecond(23.976);
    UsdGeomSetStageUpAxis(stage, UsdGeomTokens->y);
    UsdGeomSetStageMetersPerUnit(stage, 0.01);
    UsdGeomXform const root = UsdGeomXform::Define(stage, SdfPath("/Root"));
    stage->SetDefaultPrim(root.GetPrim());
    UsdGeomXformCommonAPI const place(root);
    place.SetRotate(GfVec3f(1, 2, 3.3F));
    place.SetTranslate(GfVec3d(1, 1e20, -0.0));
    UsdGeomCamera const camera = UsdGeomCamera::Define(stage, SdfPath("/Root/T/C"));
    camera.CreateClippingRangeAttr(VtValue(GfVec2f(0.1F, 1e6F)));
    camera.CreateHorizontalApertureAttr().Set(36.5F, 1001.0);
    camera.CreateHorizontalApertureAttr().Set(36.25F, 1000.5);
    UsdGeomMesh const mesh = UsdGeomMesh::Define(stage, SdfPath("/Root/M"));
    mesh.CreatePointsAttr().Set(VtVec3fArray{GfVec3f(0.0F), GfVec3f(1, 0, 1e-5F)}, 1.0);
    mesh.CreateFaceVertexCountsAttr(VtValue(VtIntArray{3, 4}));
    mesh.CreateFaceVertexIndicesAttr(VtValue(VtIntArray()));
    mesh.CreateSubdivisionSchemeAttr(VtValue(UsdGeomTokens->none));
    UsdGeomPrimvarsAPI(mesh)
        .CreatePrimvar(TfToken("st"), SdfValueTypeNames->TexCoord2fArray, UsdGeomTokens->faceVarying)
        .Set(VtVec2fArray{GfVec2f(0, 0), GfVec2f(1, 0.5F)});
    SdfCreatePrimInLayer(stage->GetRootLayer(), SdfPath("/Over/Here"));
    EXPECT_EQ(textOf(stage), R"(#usda 1.0
(
    defaultPrim = "Root"
    endTimeCode = 1010.5
    framesPerSecond = 23.976
    metersPerUnit = 0.01
    startTimeCode = 1001
    upAxis = "Y"
)

def Xform "Root"
{
    float3 xformOp:rotateXYZ = (1, 2, 3.3)
    double3 xformOp:translate = (1, 1e20, -0)
    uniform token[] xformOpOrder = ["xformOp:translate", "xformOp:rotateXYZ"]

    def "T"
    {
        def Camera "C"
        {
            float2 clippingRange = (0.1, 1000000)
            float horizontalAperture.timeSamples = {
                1000.5: 36.25,
                1001: 36.5,
            }
        }
    }

    def Mesh "M"
    {
        int[] faceVertexCounts = [3, 4]
        int[] faceVertexIndices = []
        point3f[] points.timeSamples = {
            1: [(0, 0, 0), (1, 0, 0.00001)],
        }
        texCoord2f[] primvars:st = [(0, 0), (1, 0.5)] (
            interpolation = "faceVarying"
        )
        uniform token subdivisionScheme = "none"
    }
}

over "Over"
{
    over "Here"
    {
    }
}

)");
}

TEST(UsdStage, NumbersAreTheShortestThatReadBack)
{
    UsdStageRefPtr const stage = UsdStage::CreateInMemory();
    UsdGeomCamera const camera = UsdGeomCamera::Define(stage, SdfPath("/c"));
    UsdAttribute const focal = camera.CreateFocalLengthAttr();
    for (auto const& [number, text] :
         {std::pair(1.0F / 3.0F, "0.33333334"), std::pair(1e-6F, "0.000001"), std::pair(1e-7F, "1e-7"),
          std::pair(123456789.0F, "123456790"), std::pair(1e15F, "1e15"), std::pair(16777216.0F, "16777216"),
          std::pair(1e-45F, "1e-45"), std::pair(-0.0F, "-0")})
    {
        focal.Set(number);
        EXPECT_EQ(valueIn(textOf(stage), "focalLength"), text);
    }
    double const infinity = std::numeric_limits<double>::infinity();
    for (auto const& [number, text] :
         {std::pair(1.0 / 3.0, "0.3333333333333333"), std::pair(0.1 + 0.2, "0.30000000000000004"),
          std::pair(100000000000000.0, "100000000000000"), std::pair(1234567890123456.0, "1.234567890123456e15"),
          std::pair(5e-324, "5e-324"), std::pair(infinity, "inf"), std::pair(std::nan(""), "nan")})
    {
        UsdGeomXformCommonAPI(camera).SetTranslate(GfVec3d(number, 0, 0));
        EXPECT_EQ(valueIn(textOf(stage), "translate"), "(" + std::string(text) + ", 0, 0)");
    }
}

TEST(UsdStage, TextsAreQuotedAndEscaped)
{
    UsdStageRefPtr const stage = UsdStage::CreateInMemory();
    for (auto const& [text, quoted] :
         {std::pair("plain \xc3\xa9", "\"plain \xc3\xa9\""), std::pair("only \"", "'only \"'"),
          std::pair("both ' and \" \x7f", R"("both ' and \" \x7f")"), std::pair("\\ \t\r\x01", R"("\\ \t\r\x01")")})
    {
        stage->GetRootLayer()->SetDocumentation(text);
        EXPECT_EQ(valueIn(textOf(stage), "doc"), quoted);
    }
    stage->GetRootLayer()->SetDocumentation("two\n'lines'");
    EXPECT_NE(textOf(stage).find("doc = \"\"\"two\n'lines'\"\"\"\n"), std::string::npos);
}

TEST(UsdStage, AChangeBlockHidesWhatIsMadeInIt)
{
    UsdStageRefPtr const stage = UsdStage::CreateInMemory();
    SdfPath const path("/Group/Point");
    TfErrorMark const mark;
    {
        SdfChangeBlock const block;
        {
            SdfChangeBlock const inner;
            SdfPrimSpecHandle const spec = SdfCreatePrimInLayer(stage->GetRootLayer(), path);
            EXPECT_EQ(spec->GetSpecifier(), SdfSpecifierOver);
            spec->SetSpecifier(SdfSpecifierDef);
            spec->SetTypeName("Xform");
        }
        EXPECT_TRUE(stage->GetRootLayer()->GetPrimAtPath(path));
        EXPECT_FALSE(stage->GetPrimAtPath(path));
        EXPECT_FALSE(UsdGeomXform::Define(stage, SdfPath("/Other"))) << "is written, but can't be got yet";
        EXPECT_TRUE(mark.Clear());
    }
    EXPECT_TRUE(stage->GetPrimAtPath(path) && stage->GetPrimAtPath(SdfPath("/Other")));
    EXPECT_FALSE(stage->GetPrimAtPath(path).IsDefined()) << "what is above it is no more than an over";
    EXPECT_TRUE(UsdGeomXformCommonAPI(stage->GetPrimAtPath(path)).SetTranslate(GfVec3d(1.0)));
    EXPECT_TRUE(mark.IsClean());
}

TEST(UsdStage, ValuesOfAnotherTypeAreRefused)
{
    UsdStageRefPtr const stage = UsdStage::CreateInMemory();
    UsdAttribute const focal = UsdGeomCamera::Define(stage, SdfPath("/c")).CreateFocalLengthAttr(VtValue(35.0F));
    TfErrorMark const mark;
    EXPECT_FALSE(focal.Set(36.0));
    EXPECT_TRUE(mark.Clear());
    EXPECT_FALSE(focal.Set(36, 1.0));
    EXPECT_TRUE(mark.Clear());
    EXPECT_EQ(valueIn(textOf(stage), "focalLength"), "35");
}

TEST(UsdStage, TransformsKeepTheirOrder)
{
    UsdStageRefPtr const stage = UsdStage::CreateInMemory();
    UsdGeomXformCommonAPI const place(UsdGeomXform::Define(stage, SdfPath("/x")));
    EXPECT_TRUE(place.SetScale(GfVec3f(2.0F)));
    EXPECT_TRUE(place.SetTranslate(GfVec3d(1.0), 5.0));
    EXPECT_TRUE(place.SetRotate(GfVec3f(3.0F), UsdGeomXformCommonAPI::RotationOrderZYX, 7.0));
    TfErrorMark const mark;
    EXPECT_FALSE(place.SetRotate(GfVec3f(4.0F), UsdGeomXformCommonAPI::RotationOrderXYZ));
    EXPECT_TRUE(mark.Clear());
    EXPECT_EQ(valueIn(textOf(stage), "xformOpOrder"), R"(["xformOp:translate", "xformOp:rotateZYX", "xformOp:scale"])");
    EXPECT_EQ(textOf(stage).find("rotateXYZ"), std::string::npos);
    EXPECT_FALSE(UsdGeomXformCommonAPI(stage->DefinePrim(SdfPath("/untyped"))).SetScale(GfVec3f(1.0F)));
    EXPECT_TRUE(mark.Clear());
}

TEST(UsdStage, DefiningAgainKeepsWhatIsThere)
{
    UsdStageRefPtr stage = UsdStage::CreateInMemory();
    UsdGeomXformCommonAPI(UsdGeomXform::Define(stage, SdfPath("/a/b"))).SetScale(GfVec3f(2.0F));
    EXPECT_EQ(stage->GetPrimAtPath(SdfPath("/a")).GetTypeName(), TfToken());
    EXPECT_FALSE(UsdGeomCamera(stage->GetPrimAtPath(SdfPath("/a/b"))));
    UsdGeomMesh::Define(stage, SdfPath("/a"));
    UsdGeomCamera::Define(stage, SdfPath("/a/b"));
    EXPECT_EQ(textOf(stage), R"(#usda 1.0

def Mesh "a"
{
    def Camera "b"
    {
        float3 xformOp:scale = (2, 2, 2)
        uniform token[] xformOpOrder = ["xformOp:scale"]
    }
}

)");
    stage->SetDefaultPrim(stage->GetPrimAtPath(SdfPath("/a/b")));
    EXPECT_EQ(stage->GetDefaultPrim().GetPath(), SdfPath("/a/b"));
    TfErrorMark const mark;
    EXPECT_FALSE(stage->DefinePrim(SdfPath("a/b")));
    EXPECT_TRUE(mark.Clear());
    EXPECT_FALSE(UsdGeomSetStageUpAxis(stage, TfToken("X")));
    EXPECT_TRUE(mark.Clear());
    UsdPrim const prim = stage->GetPrimAtPath(SdfPath("/a"));
    stage = UsdStageRefPtr();
    EXPECT_FALSE(prim) << "went with its stage";
}

TEST(UsdStage, PathsAreIdentifiersBetweenSlashes)
{
    TfErrorMark const mark;
    for (char const* const bad : {"", "1a", "a b", "/a/", "/a b", "//", "/a//b", "a-b"})
    {
        EXPECT_TRUE(SdfPath(bad).IsEmpty()) << bad;
        EXPECT_TRUE(mark.Clear()) << bad;
    }
    for (char const* const good : {"/", "a", "/a", "a/b_1", "/_/A9"})
    {
        EXPECT_EQ(SdfPath(good).GetString(), good);
    }
    SdfPath const a("/a");
    EXPECT_EQ(a.AppendPath(SdfPath("b/c")), SdfPath("/a/b/c"));
    EXPECT_EQ(SdfPath("/").AppendChild(TfToken("b")).GetParentPath(), SdfPath::AbsoluteRootPath());
    EXPECT_EQ(SdfPath("/a/b/c").GetParentPath().GetName(), "b");
    EXPECT_TRUE(mark.IsClean());
    for (SdfPath const& bad :
         {a.AppendPath(SdfPath("/b")), a.AppendPath(SdfPath()), SdfPath().AppendPath(a), a.AppendChild(TfToken("1b"))})
    {
        EXPECT_TRUE(bad.IsEmpty());
    }
    EXPECT_TRUE(mark.Clear());
}

}
