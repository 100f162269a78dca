#include "FbxAnimation.h"

#include "FbxManagerData.h"
#include "FbxScene.h"

#include <algorithm>
#include <cstring>

namespace fbxsdk
{

FBXSDK_OBJECT_IMPLEMENT(FbxAnimCurve);
FBXSDK_OBJECT_IMPLEMENT(FbxAnimCurveNode);
FBXSDK_OBJECT_IMPLEMENT(FbxAnimLayer);
FBXSDK_OBJECT_IMPLEMENT(FbxAnimStack);

FbxAnimCurve::FbxAnimCurve(FbxManager& manager, char const* name) : FbxObject(manager, name)
{
}

void FbxAnimCurve::KeyModifyBegin()
{
}

void FbxAnimCurve::KeyModifyEnd()
{
}

int FbxAnimCurve::KeyAdd(FbxTime time, int* last)
{
    // Keys nearly always come in order.
    auto place = mKeys.end();
    if (!mKeys.empty() && time <= mKeys.back().time)
    {
        place = std::lower_bound(mKeys.begin(), mKeys.end(), time,
                                 [](FbxAnimCurveKey const& key, FbxTime sought) { return key.time < sought; });
    }
    if (place == mKeys.end() || place->time != time)
    {
        FbxAnimCurveKey key;
        key.time = time;
        place = mKeys.insert(place, key);
    }
    int const index = static_cast<int>(place - mKeys.begin());
    if (last)
    {
        *last = index;
    }
    return index;
}

void FbxAnimCurve::KeySet(int index, FbxTime time, float value, FbxAnimCurveDef::EInterpolationType interpolation,
                          FbxAnimCurveDef::ETangentMode tangent, float data0, float data1,
                          FbxAnimCurveDef::EWeightedMode weighted, float weight0, float weight1, float, float)
{
    if (interpolation == FbxAnimCurveDef::eInterpolationConstant)
    {
        tangent = {};
    }
    if (has(index))
    {
        mKeys[static_cast<std::size_t>(index)] = {
            time,     value,          interpolation,     static_cast<unsigned int>(tangent),
            weighted, {data0, data1}, {weight0, weight1}};
    }
}

void FbxAnimCurve::KeySetValue(int index, float value)
{
    if (has(index))
    {
        mKeys[static_cast<std::size_t>(index)].value = value;
    }
}

void FbxAnimCurve::KeySetInterpolation(int index, FbxAnimCurveDef::EInterpolationType interpolation)
{
    if (has(index))
    {
        FbxAnimCurveKey& key = mKeys[static_cast<std::size_t>(index)];
        key.interpolation = interpolation;
        key.tangent = interpolation == FbxAnimCurveDef::eInterpolationConstant ? 0 : key.tangent;
    }
}

void FbxAnimCurve::KeySetTangentMode(int index, FbxAnimCurveDef::ETangentMode tangent)
{
    if (has(index))
    {
        mKeys[static_cast<std::size_t>(index)].tangent = static_cast<unsigned int>(tangent);
    }
}

void FbxAnimCurve::KeySetConstantMode(int index, FbxAnimCurveDef::EConstantMode mode)
{
    if (has(index))
    {
        mKeys[static_cast<std::size_t>(index)].tangent = static_cast<unsigned int>(mode);
    }
}

FbxTime FbxAnimCurve::KeyGetTime(int index) const
{
    return has(index) ? mKeys[static_cast<std::size_t>(index)].time : FbxTime();
}

float FbxAnimCurve::KeyGetValue(int index) const
{
    return has(index) ? mKeys[static_cast<std::size_t>(index)].value : 0.0F;
}

FbxAnimCurveDef::EInterpolationType FbxAnimCurve::KeyGetInterpolation(int index) const
{
    return has(index) ? mKeys[static_cast<std::size_t>(index)].interpolation : FbxAnimCurveDef::EInterpolationType();
}

FbxAnimCurveDef::ETangentMode FbxAnimCurve::KeyGetTangentMode(int index) const
{
    unsigned int const tangent = has(index) ? mKeys[static_cast<std::size_t>(index)].tangent : 0;
    return static_cast<FbxAnimCurveDef::ETangentMode>(tangent);
}

int FbxAnimCurve::KeyGetCount() const
{
    return static_cast<int>(mKeys.size());
}

void FbxAnimCurve::KeyClear()
{
    mKeys.clear();
}

void FbxAnimCurve::ResizeKeyBuffer(int count)
{
    mKeys.reserve(static_cast<std::size_t>(std::max(count, 0)));
}

std::vector<FbxAnimCurveKey> const& FbxAnimCurve::keys() const
{
    return mKeys;
}

void FbxAnimCurve::KeyScaleValue(float factor)
{
    for (FbxAnimCurveKey& key : mKeys)
    {
        key.value *= factor;
        key.slopes[0] *= factor;
        key.slopes[1] *= factor;
    }
}

bool FbxAnimCurve::has(int index) const
{
    return index >= 0 && index < KeyGetCount();
}

FbxAnimCurveNode::FbxAnimCurveNode(FbxManager& manager, char const* name)
    : FbxObject(manager, name, fbxCurveNodeDefinitions())
{
}

unsigned int FbxAnimCurveNode::GetChannelsCount() const
{
    return mRecord ? static_cast<unsigned int>(fbxNumberCount(mRecord->definition->type)) : 0;
}

FbxString FbxAnimCurveNode::GetChannelName(int index) const
{
    constexpr char const* components[] = {FBXSDK_CURVENODE_COMPONENT_X, FBXSDK_CURVENODE_COMPONENT_Y,
                                          FBXSDK_CURVENODE_COMPONENT_Z};
    if (index < 0 || index >= static_cast<int>(GetChannelsCount()))
    {
        return "";
    }
    return GetChannelsCount() == 1 ? mRecord->definition->name : components[index];
}

FbxAnimCurve* FbxAnimCurveNode::GetCurve(unsigned int channel, unsigned int id) const
{
    return channel < GetChannelsCount() && id == 0 ? mCurves[channel] : nullptr;
}

FbxAnimCurve* FbxAnimCurveNode::CreateCurve(char const*, unsigned int channel)
{
    if (channel >= GetChannelsCount())
    {
        return nullptr;
    }
    if (!mCurves[channel])
    {
        mCurves[channel] = FbxAnimCurve::Create(this, "");
    }
    return mCurves[channel];
}

FbxAnimCurve* FbxAnimCurveNode::CreateCurve(char const* curveNodeName, char const* channel)
{
    for (unsigned int i = 0; channel && i < GetChannelsCount(); ++i)
    {
        if (GetChannelName(static_cast<int>(i)) == channel)
        {
            return CreateCurve(curveNodeName, i);
        }
    }
    return nullptr;
}

bool FbxAnimCurveNode::IsAnimated(bool) const
{
    return std::any_of(std::begin(mCurves), std::end(mCurves),
                       [](FbxAnimCurve const* curve) { return curve && curve->KeyGetCount() > 0; });
}

FbxAnimLayer* FbxAnimCurveNode::layer() const
{
    return mLayer;
}

FbxPropertyRecord* FbxAnimCurveNode::record() const
{
    return mRecord;
}

FbxAnimCurveNode* FbxAnimCurveNode::next() const
{
    return mNext;
}

void FbxAnimCurveNode::bind(FbxAnimLayer* layer, FbxPropertyRecord* record)
{
    mLayer = layer;
    mRecord = record;
    mNext = record->curveNode;
    layer->mCurveNodes.push_back(this);
    record->curveNode = this;
}

void FbxAnimCurveNode::collectDoomed(std::vector<FbxObject*>& doomed, bool)
{
    std::copy_if(std::begin(mCurves), std::end(mCurves), std::back_inserter(doomed),
                 [](FbxAnimCurve const* curve) { return curve != nullptr; });
}

void FbxAnimCurveNode::forget(FbxDoomed const& doomed)
{
    FbxObject::forget(doomed);
    for (FbxAnimCurve*& curve : mCurves)
    {
        curve = fbxStill(curve, doomed);
    }
}

FbxAnimLayer::FbxAnimLayer(FbxManager& manager, char const* name)
    : FbxCollection(manager, name, fbxLayerDefinitions()), Weight(defined("Weight"))
{
}

std::vector<FbxAnimCurveNode*> const& FbxAnimLayer::curveNodes() const
{
    return mCurveNodes;
}

void FbxAnimLayer::placedIn(FbxObject* container)
{
    if (auto* const stack = dynamic_cast<FbxAnimStack*>(container))
    {
        stack->AddMember(this);
    }
}

void FbxAnimLayer::collectDoomed(std::vector<FbxObject*>& doomed, bool recursive)
{
    FbxCollection::collectDoomed(doomed, recursive);
    doomed.insert(doomed.end(), mCurveNodes.begin(), mCurveNodes.end());
}

void FbxAnimLayer::forget(FbxDoomed const& doomed)
{
    FbxCollection::forget(doomed);
    fbxEraseDoomed(mCurveNodes, doomed);
}

FbxAnimStack::FbxAnimStack(FbxManager& manager, char const* name)
    : FbxCollection(manager, name, fbxStackDefinitions()),
      Description(defined("Description")),
      LocalStart(defined("LocalStart")),
      LocalStop(defined("LocalStop")),
      ReferenceStart(defined("ReferenceStart")),
      ReferenceStop(defined("ReferenceStop"))
{
}

FbxTimeSpan FbxAnimStack::GetLocalTimeSpan() const
{
    return {LocalStart.Get(), LocalStop.Get()};
}

void FbxAnimStack::SetLocalTimeSpan(FbxTimeSpan const& span)
{
    LocalStart.Set(span.GetStart());
    LocalStop.Set(span.GetStop());
}

void FbxAnimStack::placedIn(FbxObject* container)
{
    if (auto* const scene = dynamic_cast<FbxScene*>(container))
    {
        scene->AddMember(this);
    }
}

}
