#pragma once
// What everything in a scene is: a named object with properties, owned by a manager.

#include "FbxProperty.h"
#include "FbxTypes.h"

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

/// The two ways in which an object of a class is made: owned by the manager alone, or within a
/// scene or another object. A null name is an empty one.
#define FBXSDK_OBJECT_DECLARE(Class)                                                                                   \
public:                                                                                                                \
    static Class* Create(FbxManager* manager, char const* name);                                                       \
    static Class* Create(FbxObject* container, char const* name);                                                      \
                                                                                                                       \
protected:                                                                                                             \
    Class(FbxManager& manager, char const* name);                                                                      \
    ~Class() override;                                                                                                 \
    friend class FbxManager

namespace fbxsdk
{

class FbxIOPluginRegistry;
class FbxIOSettings;
class FbxScene;
struct FbxManagerData;
struct FbxPropertyDefinition;

/// Objects that are about to end.
using FbxDoomed = std::unordered_set<FbxObject const*>;

/// Owns all objects that were made with it.
class FbxManager
{
public:
    /// A new manager; end it with Destroy().
    static FbxManager* Create();

    /// Destroys the manager and all its objects.
    void Destroy();

    FbxIOPluginRegistry* GetIOPluginRegistry() const;

    /// The settings of exporters that are given none.
    void SetIOSettings(FbxIOSettings* settings);
    FbxIOSettings* GetIOSettings() const;

    static char const* GetVersion(bool full = true);

    FbxManager(FbxManager const&) = delete;
    FbxManager& operator=(FbxManager const&) = delete;

    /// Takes the object over; for the Create functions.
    template <class T>
    T* adopt(T* object)
    {
        adoptObject(object);
        return object;
    }

    /// Ends objects and whatever ends with them.
    void destroy(FbxObject* object, bool recursive);

    FbxManagerData& data() const
    {
        return *mData;
    }

private:
    FbxManager();
    ~FbxManager();
    void adoptObject(FbxObject* object);

    std::unique_ptr<FbxManagerData> mData;
};

/// A named object. It lives until Destroy() or the end of its manager.
class FbxObject
{
public:
    /// Ends the object, and takes it out of everything that refers to it. That is a walk over all
    /// objects of the manager; many at once end best with the manager, or with a node above them.
    ///
    /// @param recursive nodes: also the nodes below it; else these lose their parent
    void Destroy(bool recursive = false);

    /// Any text in UTF-8, of any length. Names needn't be unique; the writer makes them so
    /// where the file needs it.
    void SetName(char const* name);
    char const* GetName() const;

    FbxManager* GetFbxManager() const;

    /// The scene that the object was made in, or null.
    FbxScene* GetScene() const;

    FbxProperty FindProperty(char const* name, bool caseSensitive = true) const;
    FbxProperty GetFirstProperty() const;
    FbxProperty GetNextProperty(FbxProperty const& property) const;

    FbxObject(FbxObject const&) = delete;
    FbxObject& operator=(FbxObject const&) = delete;

    /// The properties in the order of their definitions, for the writer.
    std::vector<FbxPropertyRecord>& records() const;

protected:
    FbxObject(FbxManager& manager, char const* name);
    FbxObject(FbxManager& manager, char const* name, std::vector<FbxPropertyDefinition> const& definitions);
    virtual ~FbxObject();

    /// The record of a property that the class defines; a logic error if it doesn't.
    FbxPropertyRecord* defined(char const* name) const;

    /// Places a new object within another one.
    void enter(FbxObject* container);

    /// Told when the object is made within another one.
    virtual void placedIn(FbxObject* container);

    /// Adds what ends together with this object.
    virtual void collectDoomed(std::vector<FbxObject*>& doomed, bool recursive);

    /// Lets go of objects that end.
    virtual void forget(FbxDoomed const& doomed);

private:
    friend class FbxManager;
    friend class FbxAnimCurveNode;

    FbxManager* mManager;
    FbxScene* mScene = nullptr;
    std::string mName;
    std::size_t mPlaceInManager = 0;
    std::unique_ptr<std::vector<FbxPropertyRecord>> mRecords;
};

/// Objects that contain others.
class FbxCollection : public FbxObject
{
public:
    /// Adds an object that isn't a member yet.
    ///
    /// @return false when it is null or is one already
    bool AddMember(FbxObject* member);
    bool RemoveMember(FbxObject* member);
    int GetMemberCount() const;
    FbxObject* GetMember(int index = 0) const;

protected:
    using FbxObject::FbxObject;
    ~FbxCollection() override;
    void forget(FbxDoomed const& doomed) override;

private:
    std::vector<FbxObject*> mMembers;
    std::unordered_set<FbxObject*> mIsMember;
};

}
