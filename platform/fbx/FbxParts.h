#pragma once
// Parts of a document that both versions have, nearly alike.

#include "FbxBinary.h"
#include "FbxContent.h"
#include "FbxRecord.h"

#include <string>
#include <vector>

namespace fbxsdk
{

/// Writes a scene, and holds what both versions share.
class FbxParts
{
public:
    FbxParts(FbxContent& content, FbxBinary& out);

protected:
    /// A property with the value that goes into the file.
    struct Value
    {
        FbxPropertyDefinition const* definition;
        double numbers[3];
        FbxLongLong ticks;
        FbxString text;
        bool isAnimated;
    };

    /// The values of an object. A camera whose angle comes from its focal length gets the angles
    /// that belong to it, as some readers look at nothing else.
    std::vector<Value> valuesOf(FbxObject const& object) const;

    /// Default values.
    static std::vector<Value> valuesOf(FbxDefinitions const& definitions);

    /// The values of a node. Version 7.7 leaves out what its template says as well, except for
    /// the transform.
    std::vector<Value> valuesOf(FbxNode const& node) const;

    /// The values of the settings: a time mode that all readers know, and the span of time.
    std::vector<Value> settings() const;

    /// Frames per second of the scene.
    double frameRate() const;

    void openProperties();

    /// @param suffix behind the flags
    void property(Value const& value, char const* suffix = "");
    void properties(std::vector<Value> const& values);

    void headerExtension();
    void sceneInfo();
    void creation();
    void cameraLines(FbxCamera const& camera);

    /// Points, polygons, texture coordinates and material indices.
    ///
    /// @param materialCount of the node
    void geometry(FbxMesh const& mesh, int materialCount);

    /// The lines that a take begins with: a file name, and its times.
    void takeHead(FbxTake const& take);

    static char const* subclass(FbxNodeAttribute const* attribute);
    static FbxLetter shading(FbxNodeAttribute const* attribute);

    FbxContent& m_content;
    FbxBinary& m_out;
    bool const m_isOld;

private:
    void uvElement(FbxMesh const& mesh, FbxGeometryElementUV const& element, int index,
                   std::vector<int> const& polygons);
    void materialElement(FbxGeometryElementMaterial const* element, std::vector<int> const& polygons);
    void layers(int uvCount, bool hasMaterial);
};

/// A key as both versions say it: flags, the two slopes and the two weights.
struct FbxKeyForm
{
    unsigned int flags;
    float slopes[2];
    float weights[2];

    bool operator==(FbxKeyForm const& other) const;
};

/// How a key is written. Slopes of auto keys are worked out, so that readers needn't agree on
/// how to find them: along the line through both neighbours, flat at the ends.
FbxKeyForm fbxKeyForm(std::vector<FbxAnimCurveKey> const& keys, std::size_t index);

/// Writes all of a scene in version 7.7, or 6.1.
void fbxWrite7(FbxContent& content, FbxBinary& out);
void fbxWrite6(FbxContent& content, FbxBinary& out);

/// The takes of version 6.1.
void fbxWriteTakes6(FbxContent& content, FbxBinary& out);

/// What a node goes by in version 6.1.
std::string fbxModelName(FbxWrittenNode const& written);

}
