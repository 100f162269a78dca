#include "FbxObject.h"

#include "FbxAnimation.h"
#include "FbxManagerData.h"
#include "FbxScene.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <stdexcept>

namespace fbxsdk
{

namespace
{

bool equalWithoutCase(char const* a, char const* b)
{
    auto const lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
    while (*a && lower(*a) == lower(*b))
    {
        ++a;
        ++b;
    }
    return lower(*a) == lower(*b);
}

}

FbxManager::FbxManager() : mData(std::make_unique<FbxManagerData>())
{
}

FbxManager::~FbxManager()
{
    for (FbxObject* const object : mData->objects)
    {
        delete object;
    }
}

FbxManager* FbxManager::Create()
{
    return new FbxManager;
}

void FbxManager::Destroy()
{
    delete this;
}

FbxIOPluginRegistry* FbxManager::GetIOPluginRegistry() const
{
    return &mData->registry;
}

void FbxManager::SetIOSettings(FbxIOSettings* settings)
{
    mData->settings = settings;
}

FbxIOSettings* FbxManager::GetIOSettings() const
{
    return mData->settings;
}

char const* FbxManager::GetVersion(bool full)
{
    return full ? "1.0.0 Marlo" : "1.0.0";
}

void FbxManager::adoptObject(FbxObject* object)
{
    std::unique_ptr<FbxObject, void (*)(FbxObject*)> guard(object, [](FbxObject* orphan) { delete orphan; });
    mData->objects.push_back(object);
    static_cast<void>(guard.release());
}

void FbxManager::destroy(FbxObject* object, bool recursive)
{
    std::vector<FbxObject*> ending{object};
    FbxDoomed doomed{object};
    for (std::size_t i = 0; i < ending.size(); ++i)
    {
        std::vector<FbxObject*> more;
        ending[i]->collectDoomed(more, recursive);
        for (FbxObject* const one : more)
        {
            if (doomed.insert(one).second)
            {
                ending.push_back(one);
            }
        }
    }
    fbxEraseDoomed(mData->objects, doomed);
    mData->settings = fbxStill(mData->settings, doomed);
    for (FbxObject* const left : mData->objects)
    {
        left->forget(doomed);
    }
    for (FbxObject* const one : ending)
    {
        delete one;
    }
}

FbxObject::FbxObject(FbxManager& manager, char const* name) : mManager(&manager), mName(name ? name : "")
{
}

FbxObject::FbxObject(FbxManager& manager, char const* name, FbxDefinitions const& definitions)
    : FbxObject(manager, name)
{
    mRecords = std::make_unique<std::vector<FbxPropertyRecord>>(definitions.size());
    for (std::size_t i = 0; i < definitions.size(); ++i)
    {
        FbxPropertyRecord& record = (*mRecords)[i];
        record.owner = this;
        record.definition = &definitions[i];
        std::copy_n(definitions[i].numbers, 3, record.numbers);
    }
}

FbxObject::~FbxObject() = default;

void FbxObject::Destroy(bool recursive)
{
    mManager->destroy(this, recursive);
}

void FbxObject::SetName(char const* name)
{
    mName = name ? name : "";
}

char const* FbxObject::GetName() const
{
    return mName.c_str();
}

FbxManager* FbxObject::GetFbxManager() const
{
    return mManager;
}

FbxScene* FbxObject::GetScene() const
{
    return mScene;
}

std::vector<FbxPropertyRecord>& FbxObject::records() const
{
    static std::vector<FbxPropertyRecord> none;
    return mRecords ? *mRecords : none;
}

FbxProperty FbxObject::FindProperty(char const* name, bool caseSensitive) const
{
    if (!name)
    {
        return {};
    }
    for (FbxPropertyRecord& record : records())
    {
        char const* const own = record.definition->name;
        if (caseSensitive ? std::strcmp(own, name) == 0 : equalWithoutCase(own, name))
        {
            return FbxProperty(&record);
        }
    }
    return {};
}

FbxProperty FbxObject::GetFirstProperty() const
{
    return records().empty() ? FbxProperty() : FbxProperty(&records().front());
}

FbxProperty FbxObject::GetNextProperty(FbxProperty const& property) const
{
    if (!property.IsValid() || property.GetFbxObject() != this || property.record() == &records().back())
    {
        return {};
    }
    return FbxProperty(property.record() + 1);
}

FbxPropertyRecord* FbxObject::defined(char const* name) const
{
    FbxProperty const property = FindProperty(name);
    if (!property.IsValid())
    {
        throw std::logic_error(std::string("no such property: ") + name);
    }
    return property.record();
}

void FbxObject::enter(FbxObject* container)
{
    auto* const scene = dynamic_cast<FbxScene*>(container);
    mScene = scene ? scene : container->GetScene();
    placedIn(container);
}

void FbxObject::placedIn(FbxObject*)
{
}

void FbxObject::collectDoomed(std::vector<FbxObject*>& doomed, bool)
{
    for (FbxPropertyRecord const& record : records())
    {
        for (FbxAnimCurveNode* node = record.curveNode; node; node = node->next())
        {
            doomed.push_back(node);
        }
    }
}

void FbxObject::forget(FbxDoomed const& doomed)
{
    mScene = fbxStill(mScene, doomed);
    for (FbxPropertyRecord& record : records())
    {
        if (record.other)
        {
            record.other->object = fbxStill(record.other->object, doomed);
        }
        for (FbxAnimCurveNode** link = &record.curveNode; *link;)
        {
            FbxAnimCurveNode* const node = *link;
            if (doomed.count(node))
            {
                *link = node->mNext;
            }
            else
            {
                link = &node->mNext;
            }
        }
    }
}

FbxCollection::~FbxCollection() = default;

bool FbxCollection::AddMember(FbxObject* member)
{
    if (!member || !mIsMember.insert(member).second)
    {
        return false;
    }
    mMembers.push_back(member);
    return true;
}

bool FbxCollection::RemoveMember(FbxObject* member)
{
    if (!mIsMember.erase(member))
    {
        return false;
    }
    mMembers.erase(std::find(mMembers.begin(), mMembers.end(), member));
    return true;
}

int FbxCollection::GetMemberCount() const
{
    return static_cast<int>(mMembers.size());
}

FbxObject* FbxCollection::GetMember(int index) const
{
    return index >= 0 && index < GetMemberCount() ? mMembers[static_cast<std::size_t>(index)] : nullptr;
}

void FbxCollection::forget(FbxDoomed const& doomed)
{
    FbxObject::forget(doomed);
    fbxEraseDoomed(mMembers, doomed);
    for (FbxObject const* const one : doomed)
    {
        mIsMember.erase(const_cast<FbxObject*>(one));
    }
}

}
