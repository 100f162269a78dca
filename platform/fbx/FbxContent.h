#pragma once
// What of a scene goes into a file, in its order, with the ids and names it has there.

#include "FbxBinary.h"
#include "FbxCamera.h"
#include "FbxMesh.h"
#include "FbxScene.h"
#include "text/Names.h"

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace fbxsdk
{

/// "name", the two bytes between, and the word for the class.
std::string fbxFullName(std::string const& name, char const* kind);

struct FbxWrittenNode
{
    FbxNode* node;
    std::string name;

    /// Index of the parent; -1 below the root.
    int parent;
};

struct FbxWrittenMaterial
{
    FbxSurfaceMaterial* material;
    std::string name;
};

/// A stack with the spans that go into the file.
struct FbxTake
{
    FbxAnimStack* stack;
    std::string name;
    std::vector<FbxAnimLayer*> layers;
    FbxTimeSpan local;
    FbxTimeSpan reference;
};

/// Lists and names all that is written of a scene.
class FbxContent
{
public:
    /// @param version 6100 keeps a name for the root, and names every attribute
    /// @param animated whether stacks and curves are written
    FbxContent(FbxScene& scene, int version, bool animated);

    FbxScene& scene;
    FbxMoment moment;

    /// Every node after its parent, children in their order.
    std::vector<FbxWrittenNode> nodes;
    std::vector<FbxWrittenMaterial> materials;

    /// Cameras of stereo rigs that no written node carries.
    std::vector<FbxCamera*> looseEyes;
    std::vector<FbxTake> takes;
    FbxTimeSpan timeSpan;

    /// A number for an object; the first time it is asked for it is the next of all.
    FbxLongLong id(FbxObject const* object);

    /// The name that an attribute is connected by in version 6.1.
    std::string attributeName(FbxNodeAttribute const* attribute) const;

    /// Whether the object itself is in the file.
    bool isWritten(FbxObject const* object) const;

    /// The curve nodes of a layer that have keys and an object in the file.
    std::vector<FbxAnimCurveNode*> curveNodes(FbxAnimLayer const* layer) const;

    /// Whether curves of the property are written.
    bool isAnimated(FbxPropertyRecord const& record) const;

    /// About how many bytes the document will have, before any is packed.
    std::size_t expectedSize() const;

    /// The name of the stack that programs show first.
    std::string currentTake() const;

private:
    void collectNodes(int version);
    void collectMaterials(FbxNode const* node);
    void collectEyes();
    void collectTakes();

    bool m_animated;
    FbxLongLong m_lastId = 0;
    Text::UniqueNames m_materialNames;
    std::unordered_map<FbxObject const*, FbxLongLong> m_ids;
    std::unordered_map<FbxObject const*, std::string> m_attributeNames;
    std::unordered_set<FbxObject const*> m_written;
};

}
