#pragma once
// What a manager keeps.

#include "FbxExport.h"
#include "FbxObject.h"
#include "FbxRecord.h"

#include <cstddef>
#include <vector>

/// The bodies of both Create functions of a class.
#define FBXSDK_OBJECT_IMPLEMENT(Class)                                                                                 \
    Class* Class::Create(FbxManager* manager, char const* name)                                                        \
    {                                                                                                                  \
        return manager ? manager->adopt(new Class(*manager, name)) : nullptr;                                          \
    }                                                                                                                  \
                                                                                                                       \
    Class* Class::Create(FbxObject* container, char const* name)                                                       \
    {                                                                                                                  \
        Class* const object = container ? Create(container->GetFbxManager(), name) : nullptr;                          \
        if (object)                                                                                                    \
        {                                                                                                              \
            object->enter(container);                                                                                  \
        }                                                                                                              \
        return object;                                                                                                 \
    }                                                                                                                  \
                                                                                                                       \
    Class::~Class() = default

namespace fbxsdk
{

struct FbxManagerData
{
    std::vector<FbxObject*> objects;
    FbxIOPluginRegistry registry;
    FbxIOSettings* settings = nullptr;
};

/// The object out of a pointer when it isn't among those that end.
template <class T>
T* fbxStill(T* object, FbxDoomed const& doomed)
{
    return object && doomed.count(object) ? nullptr : object;
}

/// Takes those that end out of a list.
template <class T>
void fbxEraseDoomed(std::vector<T*>& list, FbxDoomed const& doomed)
{
    std::size_t kept = 0;
    for (T* const object : list)
    {
        list[kept] = object;
        kept += doomed.count(object) ? 0 : 1;
    }
    list.resize(kept);
}

}
