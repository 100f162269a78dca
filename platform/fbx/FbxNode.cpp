#include "FbxNode.h"

#include "FbxCamera.h"
#include "FbxManagerData.h"
#include "FbxMesh.h"

#include <algorithm>
#include <cstring>

namespace fbxsdk
{

FBXSDK_OBJECT_IMPLEMENT(FbxNull);
FBXSDK_OBJECT_IMPLEMENT(FbxNode);
FBXSDK_OBJECT_IMPLEMENT(FbxSurfaceLambert);

FbxNodeAttribute::FbxNodeAttribute(FbxManager& manager, char const* name, FbxDefinitions const& definitions)
    : FbxObject(manager, name, definitions), Color(defined("Color"))
{
}

FbxNodeAttribute::~FbxNodeAttribute() = default;

FbxNode* FbxNodeAttribute::GetNode(int index) const
{
    return index == 0 ? mNode : nullptr;
}

void FbxNodeAttribute::forget(FbxDoomed const& doomed)
{
    FbxObject::forget(doomed);
    mNode = fbxStill(mNode, doomed);
}

FbxNull::FbxNull(FbxManager& manager, char const* name)
    : FbxNodeAttribute(manager, name, fbxNullDefinitions()), Size(defined("Size")), Look(defined("Look"))
{
}

FbxNodeAttribute::EType FbxNull::GetAttributeType() const
{
    return eNull;
}

FbxNode::FbxNode(FbxManager& manager, char const* name)
    : FbxObject(manager, name, fbxNodeDefinitions()),
      LclTranslation(defined("Lcl Translation")),
      LclRotation(defined("Lcl Rotation")),
      LclScaling(defined("Lcl Scaling")),
      Visibility(defined("Visibility")),
      VisibilityInheritance(defined("Visibility Inheritance")),
      RotationOrder(defined("RotationOrder")),
      RotationActive(defined("RotationActive")),
      PreRotation(defined("PreRotation")),
      PostRotation(defined("PostRotation")),
      InheritType(defined("InheritType")),
      Show(defined("Show"))
{
    RotationActive.Set(true);
    InheritType.Set(FbxTransform::eInheritRSrs);
}

void FbxNode::SetRotationOrder(EPivotSet, EFbxRotationOrder order)
{
    RotationOrder.Set(order);
}

void FbxNode::SetRotationActive(bool active)
{
    RotationActive.Set(active);
}

void FbxNode::SetPreRotation(EPivotSet, FbxVector4 degrees)
{
    PreRotation.Set(degrees);
}

void FbxNode::SetPostRotation(EPivotSet, FbxVector4 degrees)
{
    PostRotation.Set(degrees);
}

void FbxNode::SetShadingMode(EShadingMode)
{
}

FbxNodeAttribute* FbxNode::SetNodeAttribute(FbxNodeAttribute* attribute)
{
    FbxNodeAttribute* const before = mAttribute;
    if (before == attribute)
    {
        return before;
    }
    if (before)
    {
        before->mNode = nullptr;
    }
    if (attribute && attribute->mNode)
    {
        attribute->mNode->SetNodeAttribute(nullptr);
    }
    mAttribute = attribute;
    if (attribute)
    {
        attribute->mNode = this;
    }
    FindProperty("DefaultAttributeIndex").Set(attribute ? 0 : -1);
    return before;
}

FbxNodeAttribute* FbxNode::GetNodeAttribute()
{
    return mAttribute;
}

FbxNodeAttribute const* FbxNode::GetNodeAttribute() const
{
    return mAttribute;
}

FbxCamera* FbxNode::GetCamera()
{
    return dynamic_cast<FbxCamera*>(mAttribute);
}

FbxMesh* FbxNode::GetMesh()
{
    return dynamic_cast<FbxMesh*>(mAttribute);
}

FbxNull* FbxNode::GetNull()
{
    return dynamic_cast<FbxNull*>(mAttribute);
}

bool FbxNode::AddChild(FbxNode* child)
{
    // Only what has nodes below it can close a circle, so long chains are built in no time.
    if (!child || child == this || (!child->mChildren.empty() && isBelow(child)))
    {
        return false;
    }
    if (child->mParent)
    {
        child->mParent->RemoveChild(child);
    }
    mChildren.push_back(child);
    child->mParent = this;
    return true;
}

FbxNode* FbxNode::RemoveChild(FbxNode* child)
{
    if (!child || child->mParent != this)
    {
        return nullptr;
    }
    mChildren.erase(std::find(mChildren.begin(), mChildren.end(), child));
    child->mParent = nullptr;
    return child;
}

FbxNode* FbxNode::GetParent()
{
    return mParent;
}

FbxNode const* FbxNode::GetParent() const
{
    return mParent;
}

int FbxNode::GetChildCount(bool recursive) const
{
    if (!recursive)
    {
        return static_cast<int>(mChildren.size());
    }
    int count = 0;
    std::vector<FbxNode const*> open{this};
    while (!open.empty())
    {
        FbxNode const* const node = open.back();
        open.pop_back();
        count += static_cast<int>(node->mChildren.size());
        open.insert(open.end(), node->mChildren.begin(), node->mChildren.end());
    }
    return count;
}

FbxNode* FbxNode::GetChild(int index)
{
    return index >= 0 && index < GetChildCount() ? mChildren[static_cast<std::size_t>(index)] : nullptr;
}

FbxNode const* FbxNode::GetChild(int index) const
{
    return const_cast<FbxNode*>(this)->GetChild(index);
}

FbxNode* FbxNode::FindChild(char const* name, bool recursive, bool initial)
{
    if (!name)
    {
        return nullptr;
    }
    std::vector<FbxNode*> open{this};
    while (!open.empty())
    {
        FbxNode* const node = open.back();
        open.pop_back();
        if ((node != this || initial) && std::strcmp(node->GetName(), name) == 0)
        {
            return node;
        }
        if (node == this || recursive)
        {
            open.insert(open.end(), node->mChildren.rbegin(), node->mChildren.rend());
        }
    }
    return nullptr;
}

int FbxNode::AddMaterial(FbxSurfaceMaterial* material)
{
    if (!material)
    {
        return -1;
    }
    mMaterials.push_back(material);
    return GetMaterialCount() - 1;
}

int FbxNode::GetMaterialCount() const
{
    return static_cast<int>(mMaterials.size());
}

FbxSurfaceMaterial* FbxNode::GetMaterial(int index) const
{
    return index >= 0 && index < GetMaterialCount() ? mMaterials[static_cast<std::size_t>(index)] : nullptr;
}

void FbxNode::collectDoomed(std::vector<FbxObject*>& doomed, bool recursive)
{
    FbxObject::collectDoomed(doomed, recursive);
    if (recursive)
    {
        doomed.insert(doomed.end(), mChildren.begin(), mChildren.end());
        if (mAttribute)
        {
            doomed.push_back(mAttribute);
        }
    }
}

void FbxNode::forget(FbxDoomed const& doomed)
{
    FbxObject::forget(doomed);
    mParent = fbxStill(mParent, doomed);
    mAttribute = fbxStill(mAttribute, doomed);
    fbxEraseDoomed(mChildren, doomed);
    fbxEraseDoomed(mMaterials, doomed);
}

bool FbxNode::isBelow(FbxNode const* other) const
{
    FbxNode const* node = mParent;
    while (node && node != other)
    {
        node = node->mParent;
    }
    return node != nullptr;
}

FbxSurfaceMaterial::FbxSurfaceMaterial(FbxManager& manager, char const* name, FbxDefinitions const& definitions)
    : FbxObject(manager, name, definitions), ShadingModel(defined("ShadingModel")), MultiLayer(defined("MultiLayer"))
{
}

FbxSurfaceMaterial::~FbxSurfaceMaterial() = default;

FbxSurfaceLambert::FbxSurfaceLambert(FbxManager& manager, char const* name)
    : FbxSurfaceMaterial(manager, name, fbxLambertDefinitions()),
      Emissive(defined("EmissiveColor")),
      EmissiveFactor(defined("EmissiveFactor")),
      Ambient(defined("AmbientColor")),
      AmbientFactor(defined("AmbientFactor")),
      Diffuse(defined("DiffuseColor")),
      DiffuseFactor(defined("DiffuseFactor")),
      NormalMap(defined("NormalMap")),
      Bump(defined("Bump")),
      BumpFactor(defined("BumpFactor")),
      TransparentColor(defined("TransparentColor")),
      TransparencyFactor(defined("TransparencyFactor"))
{
}

}
