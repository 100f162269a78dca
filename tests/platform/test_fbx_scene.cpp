#include <fbxsdk.h>
#include <gtest/gtest.h>

#include <memory>

namespace
{

struct ManagerEnd
{
    void operator()(FbxManager* manager) const
    {
        manager->Destroy();
    }
};

class FbxScenes : public testing::Test
{
protected:
    FbxNode* child(FbxNode* parent, char const* name)
    {
        FbxNode* const node = FbxNode::Create(scene, name);
        EXPECT_TRUE(parent->AddChild(node));
        return node;
    }

    std::unique_ptr<FbxManager, ManagerEnd> manager{FbxManager::Create()};
    FbxScene* scene = FbxScene::Create(manager.get(), "scene");
    FbxNode* root = scene->GetRootNode();
};

TEST_F(FbxScenes, TreeHasNoCirclesAndFindsInOrder)
{
    FbxNode* const a = child(root, "a");
    FbxNode* const b = child(a, "twin");
    FbxNode* const c = child(b, "c");
    FbxNode* const twin = child(root, "twin");
    EXPECT_FALSE(a->AddChild(a));
    EXPECT_FALSE(c->AddChild(a));
    EXPECT_FALSE(a->AddChild(nullptr));
    EXPECT_EQ(root->FindChild("twin"), b);
    EXPECT_EQ(root->FindChild("twin", false), twin);
    EXPECT_EQ(root->FindChild("C"), nullptr);
    EXPECT_EQ(root->GetChildCount(true), 4);
    EXPECT_TRUE(twin->AddChild(b));
    EXPECT_EQ(b->GetParent(), twin);
    EXPECT_EQ(a->GetChildCount(), 0);
}

TEST_F(FbxScenes, NothingPointsToWhatWasDestroyed)
{
    FbxAnimStack* const stack = FbxAnimStack::Create(scene, "stack");
    FbxAnimLayer* const first = FbxAnimLayer::Create(stack, "first");
    FbxAnimLayer* const second = FbxAnimLayer::Create(stack, "second");
    FbxNode* const node = child(root, "node");
    FbxNode* const below = child(node, "below");
    FbxCameraStereo* const rig = FbxCameraStereo::Create(scene, "rig");
    FbxCamera* const eye = FbxCamera::Create(scene, "eye");
    rig->SetLeftCamera(eye);
    node->SetNodeAttribute(rig);
    FbxSurfaceLambert* const material = FbxSurfaceLambert::Create(scene, "material");
    node->AddMaterial(material);
    FbxAnimCurve* const curve = node->LclTranslation.GetCurve(first, "X", true);
    node->LclTranslation.GetCurve(second, "Y", true)->KeyAdd(FbxTime(1));

    eye->Destroy();
    EXPECT_EQ(rig->GetLeftCamera(), nullptr);
    material->Destroy();
    EXPECT_EQ(node->GetMaterialCount(), 0);
    curve->Destroy();
    EXPECT_EQ(node->LclTranslation.GetCurve(first, "X"), nullptr);
    first->Destroy();
    EXPECT_EQ(stack->GetMemberCount(), 1);
    EXPECT_TRUE(node->LclTranslation.IsAnimated(second));
    rig->Destroy();
    EXPECT_EQ(node->GetNodeAttribute(), nullptr);
    node->Destroy();
    EXPECT_EQ(below->GetParent(), nullptr);
    EXPECT_TRUE(second->curveNodes().empty());
    EXPECT_EQ(root->GetChildCount(), 0);
    stack->Destroy();
    EXPECT_EQ(scene->GetCurrentAnimationStack(), nullptr);
}

TEST_F(FbxScenes, PropertiesTakeWhatFitsThem)
{
    FbxCameraStereo* const rig = FbxCameraStereo::Create(scene, "rig");
    EXPECT_TRUE(rig->InterestPosition.Set(FbxVector4(1, 2, 3, 4)));
    EXPECT_EQ(rig->InterestPosition.Get(), FbxDouble3(1, 2, 3));
    EXPECT_EQ(rig->FindProperty("InterestPosition").Get<FbxVector4>(), FbxVector4(1, 2, 3, 0));
    EXPECT_FALSE(rig->FindProperty("FocalLength").Set(FbxString("long")));
    EXPECT_FALSE(rig->FindProperty("LeftCamera").Set(1.0));
    EXPECT_FALSE(rig->FindProperty("NoSuch").Set(1.0));
    EXPECT_TRUE(rig->FindProperty("viewcameratolookat", false).Set(7));
    EXPECT_EQ(rig->ViewCameraToLookAt.Get(), true);
    EXPECT_TRUE(rig->PrecompFileName.Set("ü"));
    EXPECT_EQ(rig->PrecompFileName.Get(), FbxString("ü"));
    rig->FocalLength = 50;
    EXPECT_EQ(rig->FindProperty("FocalLength").Get<double>(), 50);

    FbxAnimLayer* const layer = FbxAnimLayer::Create(scene, "layer");
    EXPECT_EQ(rig->NearPlane.GetCurve(layer, true), nullptr);
    EXPECT_EQ(rig->FocalLength.GetCurve(layer), nullptr);
    FbxAnimCurve* const curve = rig->FocalLength.GetCurve(layer, "FocalLength", true);
    ASSERT_NE(curve, nullptr);
    EXPECT_EQ(rig->FocalLength.GetCurve(layer), curve);
    EXPECT_EQ(rig->UpVector.GetCurve(layer, "W", true), nullptr);
    EXPECT_STREQ(FbxNode::Create(scene, "n")->LclRotation.GetCurveNode(layer, true)->GetName(), "R");
}

TEST_F(FbxScenes, KeysStandInTheOrderOfTheirTimes)
{
    FbxAnimCurve* const curve = FbxAnimCurve::Create(scene, "");
    for (int const time : {30, 10, 20, 10})
    {
        curve->KeySetValue(curve->KeyAdd(FbxTime(time)), static_cast<float>(time));
    }
    ASSERT_EQ(curve->KeyGetCount(), 3);
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_EQ(curve->KeyGetTime(i), FbxTime(10 * (i + 1)));
        EXPECT_EQ(curve->KeyGetValue(i), 10.0F * static_cast<float>(i + 1));
    }
    curve->KeySet(3, FbxTime(), 1);
    curve->KeySetValue(-1, 1);
    EXPECT_EQ(curve->KeyGetValue(3), 0);
}

TEST_F(FbxScenes, UnitsKeepTheSizeInTheWorld)
{
    FbxAnimLayer* const layer = FbxAnimLayer::Create(FbxAnimStack::Create(scene, "s"), "l");
    FbxNode* const node = child(root, "node");
    FbxNode* const below = child(node, "below");
    node->LclTranslation.Set(FbxDouble3(200, 0, 50));
    below->LclTranslation.Set(FbxDouble3(7, 0, 0));
    FbxAnimCurve* const curve = node->LclTranslation.GetCurve(layer, "X", true);
    curve->KeySetValue(curve->KeyAdd(FbxTime(1)), 300);
    FbxSystemUnit::m.ConvertScene(scene);
    EXPECT_EQ(scene->GetGlobalSettings().GetSystemUnit(), FbxSystemUnit::m);
    EXPECT_EQ(node->LclTranslation.Get(), FbxDouble3(2, 0, 0.5));
    EXPECT_EQ(node->LclScaling.Get(), FbxDouble3(0.01, 0.01, 0.01));
    EXPECT_EQ(below->LclTranslation.Get(), FbxDouble3(7, 0, 0));
    EXPECT_FLOAT_EQ(curve->KeyGetValue(0), 3);
}

TEST_F(FbxScenes, CamerasKnowFilmsAndAngles)
{
    FbxCamera* const camera = FbxCamera::Create(scene, "camera");
    camera->SetApertureFormat(FbxCamera::e35mmAnamorphic);
    EXPECT_EQ(camera->GetApertureWidth(), 0.864);
    EXPECT_EQ(camera->GetSqueezeRatio(), 2);
    camera->SetApertureFormat(FbxCamera::eCustomAperture);
    EXPECT_EQ(camera->GetApertureHeight(), 0.732);
    camera->SetApertureWidth(36 / 25.4);
    camera->SetApertureMode(FbxCamera::eFocalLength);
    EXPECT_NEAR(camera->ComputeFieldOfView(18), 90, 1e-12);
    EXPECT_NEAR(camera->ComputeFocalLength(90), 18, 1e-12);
    EXPECT_EQ(camera->ComputeFieldOfView(0), 0);
    camera->SetNearPlane(0);
    camera->SetFarPlane(1e9);
    EXPECT_EQ(camera->GetNearPlane(), 0.001);
    EXPECT_EQ(camera->GetFarPlane(), 600000);
}

}
