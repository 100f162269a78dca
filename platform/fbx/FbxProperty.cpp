#include "FbxProperty.h"

#include "FbxAnimation.h"
#include "FbxRecord.h"
#include "FbxScene.h"

#include <algorithm>
#include <cstring>

namespace fbxsdk
{

namespace
{

bool isNumeric(FbxPropertyType type)
{
    return fbxNumberCount(type) > 0 || type == FbxPropertyType::Time || type == FbxPropertyType::ULongLong;
}

FbxPropertyRecord::Other& otherOf(FbxPropertyRecord& record)
{
    if (!record.other)
    {
        record.other = std::make_unique<FbxPropertyRecord::Other>();
    }
    return *record.other;
}

/// The curve node's name: a letter for the three parts of a transform.
char const* curveNodeName(char const* property)
{
    if (std::strcmp(property, "Lcl Translation") == 0)
    {
        return FBXSDK_CURVENODE_TRANSLATION;
    }
    if (std::strcmp(property, "Lcl Rotation") == 0)
    {
        return FBXSDK_CURVENODE_ROTATION;
    }
    return std::strcmp(property, "Lcl Scaling") == 0 ? FBXSDK_CURVENODE_SCALING : property;
}

FbxAnimLayer* firstLayer(FbxAnimStack* stack)
{
    for (int i = 0; stack && i < stack->GetMemberCount(); ++i)
    {
        if (auto* const layer = dynamic_cast<FbxAnimLayer*>(stack->GetMember(i)))
        {
            return layer;
        }
    }
    return nullptr;
}

}

FbxString FbxProperty::GetName() const
{
    return GetNameAsCStr();
}

char const* FbxProperty::GetNameAsCStr() const
{
    return mRecord ? mRecord->definition->name : "";
}

FbxObject* FbxProperty::GetFbxObject() const
{
    return mRecord ? mRecord->owner : nullptr;
}

bool FbxProperty::SetValue(FbxPropertyValue const& value)
{
    if (!mRecord)
    {
        return false;
    }
    FbxPropertyType const type = mRecord->definition->type;
    if (value.kind == FbxPropertyValue::eNumbers && isNumeric(type))
    {
        std::copy_n(value.numbers, std::min(value.count, fbxNumberCount(type)), mRecord->numbers);
        if (type == FbxPropertyType::Bool)
        {
            mRecord->numbers[0] = mRecord->numbers[0] != 0 ? 1 : 0;
        }
        if (fbxNumberCount(type) == 0)
        {
            otherOf(*mRecord).ticks = value.ticks;
        }
        return true;
    }
    if (value.kind == FbxPropertyValue::eText && type == FbxPropertyType::String)
    {
        otherOf(*mRecord).text = value.text;
        return true;
    }
    if (value.kind == FbxPropertyValue::eObject && type == FbxPropertyType::Object)
    {
        otherOf(*mRecord).object = value.object;
        return true;
    }
    return false;
}

FbxPropertyValue FbxProperty::GetValue() const
{
    FbxPropertyValue result;
    if (!mRecord)
    {
        return result;
    }
    std::copy_n(mRecord->numbers, 3, result.numbers);
    result.text = FbxString(mRecord->definition->text);
    if (mRecord->other)
    {
        result.ticks = mRecord->other->ticks;
        result.object = mRecord->other->object;
        result.text = mRecord->other->text;
    }
    return result;
}

FbxAnimCurveNode* FbxProperty::GetCurveNode(FbxAnimLayer* layer, bool create)
{
    if (!mRecord || !layer)
    {
        return nullptr;
    }
    for (FbxAnimCurveNode* node = mRecord->curveNode; node; node = node->next())
    {
        if (node->layer() == layer)
        {
            return node;
        }
    }
    if (!create || !fbxIsAnimatable(mRecord->definition->type))
    {
        return nullptr;
    }
    FbxAnimCurveNode* const node = FbxAnimCurveNode::Create(layer, curveNodeName(mRecord->definition->name));
    node->bind(layer, mRecord);
    return node;
}

FbxAnimCurveNode* FbxProperty::GetCurveNode(FbxAnimStack* stack, bool create)
{
    return GetCurveNode(firstLayer(stack), create);
}

FbxAnimCurveNode* FbxProperty::GetCurveNode(bool create)
{
    FbxScene const* const scene = mRecord ? mRecord->owner->GetScene() : nullptr;
    return scene ? GetCurveNode(scene->GetCurrentAnimationStack(), create) : nullptr;
}

FbxAnimCurve* FbxProperty::GetCurve(FbxAnimLayer* layer, bool create)
{
    return GetCurve(layer, nullptr, nullptr, create);
}

FbxAnimCurve* FbxProperty::GetCurve(FbxAnimLayer* layer, char const* channel, bool create)
{
    return GetCurve(layer, nullptr, channel, create);
}

FbxAnimCurve* FbxProperty::GetCurve(FbxAnimLayer* layer, char const*, char const* channel, bool create)
{
    FbxAnimCurveNode* const node = GetCurveNode(layer, create);
    if (!node)
    {
        return nullptr;
    }
    for (unsigned int i = 0; i < node->GetChannelsCount(); ++i)
    {
        if (!channel || node->GetChannelName(static_cast<int>(i)) == channel)
        {
            return create ? node->CreateCurve("", i) : node->GetCurve(i);
        }
    }
    return nullptr;
}

bool FbxProperty::IsAnimated(FbxAnimLayer* layer) const
{
    for (FbxAnimCurveNode* node = mRecord ? mRecord->curveNode : nullptr; node; node = node->next())
    {
        if ((!layer || node->layer() == layer) && node->IsAnimated())
        {
            return true;
        }
    }
    return false;
}

}
