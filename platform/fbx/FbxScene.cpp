#include "FbxScene.h"

#include "FbxManagerData.h"

#include <algorithm>

namespace fbxsdk
{

FBXSDK_OBJECT_IMPLEMENT(FbxGlobalSettings);
FBXSDK_OBJECT_IMPLEMENT(FbxScene);

FbxSystemUnit const FbxSystemUnit::mm{0.1};
FbxSystemUnit const FbxSystemUnit::cm{1.0};
FbxSystemUnit const FbxSystemUnit::dm{10.0};
FbxSystemUnit const FbxSystemUnit::m{100.0};
FbxSystemUnit const FbxSystemUnit::km{100000.0};
FbxSystemUnit const FbxSystemUnit::Inch{2.54};
FbxSystemUnit const FbxSystemUnit::Foot{30.48};
FbxSystemUnit const FbxSystemUnit::Mile{160934.4};
FbxSystemUnit const FbxSystemUnit::Yard{91.44};
FbxSystemUnit::ConversionOptions const FbxSystemUnit::DefaultConversionOptions;

namespace
{

void multiply(FbxPropertyT<FbxDouble3>& property, double factor)
{
    FbxDouble3 const value = property.Get();
    property.Set(FbxDouble3(value[0] * factor, value[1] * factor, value[2] * factor));
    for (FbxAnimCurveNode* node = property.record()->curveNode; node; node = node->next())
    {
        for (unsigned int i = 0; i < node->GetChannelsCount(); ++i)
        {
            if (FbxAnimCurve* const curve = node->GetCurve(i))
            {
                curve->KeyScaleValue(static_cast<float>(factor));
            }
        }
    }
}

}

void FbxSystemUnit::ConvertScene(FbxScene* scene, ConversionOptions const&) const
{
    if (!scene)
    {
        return;
    }
    FbxGlobalSettings& settings = scene->GetGlobalSettings();
    double const factor = settings.GetSystemUnit().mScaleFactor / mScaleFactor;
    settings.SetSystemUnit(*this);
    if (factor == 1.0)
    {
        return;
    }
    FbxNode* const root = scene->GetRootNode();
    for (int i = 0; i < root->GetChildCount(); ++i)
    {
        multiply(root->GetChild(i)->LclTranslation, factor);
        multiply(root->GetChild(i)->LclScaling, factor);
    }
}

FbxGlobalSettings::FbxGlobalSettings(FbxManager& manager, char const* name)
    : FbxObject(manager, name, fbxSettingsDefinitions())
{
}

void FbxGlobalSettings::SetSystemUnit(FbxSystemUnit const& unit)
{
    FindProperty("UnitScaleFactor").Set(unit.GetScaleFactor() * unit.GetMultiplier());
}

FbxSystemUnit FbxGlobalSettings::GetSystemUnit() const
{
    return FbxSystemUnit(FindProperty("UnitScaleFactor").Get<double>());
}

void FbxGlobalSettings::SetOriginalSystemUnit(FbxSystemUnit const& unit)
{
    FindProperty("OriginalUnitScaleFactor").Set(unit.GetScaleFactor() * unit.GetMultiplier());
}

FbxSystemUnit FbxGlobalSettings::GetOriginalSystemUnit() const
{
    return FbxSystemUnit(FindProperty("OriginalUnitScaleFactor").Get<double>());
}

void FbxGlobalSettings::SetTimeMode(FbxTime::EMode mode)
{
    if (mode >= FbxTime::eDefaultMode && mode < FbxTime::eModesCount)
    {
        FindProperty("TimeMode").Set(mode);
    }
}

FbxTime::EMode FbxGlobalSettings::GetTimeMode() const
{
    return FindProperty("TimeMode").Get<FbxTime::EMode>();
}

void FbxGlobalSettings::SetCustomFrameRate(double rate)
{
    FindProperty("CustomFrameRate").Set(rate);
}

double FbxGlobalSettings::GetCustomFrameRate() const
{
    return FindProperty("CustomFrameRate").Get<double>();
}

void FbxGlobalSettings::SetTimelineDefaultTimeSpan(FbxTimeSpan const& span)
{
    FindProperty("TimeSpanStart").Set(span.GetStart());
    FindProperty("TimeSpanStop").Set(span.GetStop());
}

void FbxGlobalSettings::GetTimelineDefaultTimeSpan(FbxTimeSpan& span) const
{
    span.Set(FindProperty("TimeSpanStart").Get<FbxTime>(), FindProperty("TimeSpanStop").Get<FbxTime>());
}

bool FbxGlobalSettings::SetDefaultCamera(char const* name)
{
    return FindProperty("DefaultCamera").Set(FbxString(name));
}

FbxString FbxGlobalSettings::GetDefaultCamera() const
{
    return FindProperty("DefaultCamera").Get<FbxString>();
}

FbxDocument::~FbxDocument() = default;

FbxScene::FbxScene(FbxManager& manager, char const* name)
    : FbxDocument(manager, name),
      mRoot(FbxNode::Create(&manager, "RootNode")),
      mSettings(FbxGlobalSettings::Create(&manager, "GlobalSettings"))
{
}

FbxNode* FbxScene::GetRootNode() const
{
    return mRoot;
}

FbxGlobalSettings& FbxScene::GetGlobalSettings()
{
    return *mSettings;
}

FbxGlobalSettings const& FbxScene::GetGlobalSettings() const
{
    return *mSettings;
}

bool FbxScene::SetCurrentAnimationStack(FbxAnimStack* stack)
{
    AddMember(stack);
    mCurrentStack = stack;
    return stack != nullptr;
}

FbxAnimStack* FbxScene::GetCurrentAnimationStack() const
{
    if (mCurrentStack)
    {
        return mCurrentStack;
    }
    std::vector<FbxAnimStack*> const all = stacks();
    return all.empty() ? nullptr : all.front();
}

std::vector<FbxAnimStack*> FbxScene::stacks() const
{
    std::vector<FbxAnimStack*> result;
    for (int i = 0; i < GetMemberCount(); ++i)
    {
        if (auto* const stack = dynamic_cast<FbxAnimStack*>(GetMember(i)))
        {
            result.push_back(stack);
        }
    }
    return result;
}

void FbxScene::collectDoomed(std::vector<FbxObject*>& doomed, bool recursive)
{
    FbxDocument::collectDoomed(doomed, recursive);
    doomed.push_back(mRoot);
    doomed.push_back(mSettings);
}

void FbxScene::forget(FbxDoomed const& doomed)
{
    FbxDocument::forget(doomed);
    mCurrentStack = fbxStill(mCurrentStack, doomed);
}

}
