#pragma once
// The scene of a matchmove project: shots with their cameras and trackers, objects that
// move, meshes. docs/kestrelia-file.md describes it with units, as its file holds it.
//
// Right-handed, y up, lengths in scene units. A camera looks along its -z axis with y up in
// its picture. Frames are the numbers that a user sees. Texts are UTF-8.

#include "kestrelia/KestreliaApi.h"
#include "kestrelia/Values.h"

#include <optional>

namespace KestreliaLib
{

/// Something that carries trackers and meshes.
struct Object
{
    /// From 1, unique among the objects of a scene.
    unsigned int id = 0;
    std::string name;

    /// In the scene.
    Samples<Pose> poses;

    bool operator==(Object const& other) const;
};

/// Trackers that belong together.
struct TrackerGroup
{
    /// From 1, unique among the groups of a shot.
    unsigned int id = 0;
    std::string name;

    bool operator==(TrackerGroup const& other) const;
};

/// A feature that was followed through a shot, solved, or both.
struct Tracker
{
    /// From 1, unique among all trackers of a scene.
    unsigned int id = 0;
    std::string name;

    /// Of its group; 0 for none.
    unsigned int group = 0;

    /// What its positions move with; 0 for the scene itself.
    unsigned int object = 0;

    /// Where it is seen, in pixels of the shot, from the lower left corner of the picture, y
    /// up. Frames in which it isn't tracked have no sample. Empty for solved points that
    /// nobody tracked.
    Samples<Vector2> image;

    /// Where it is, in the space of its object. Empty for what wasn't solved.
    Samples<Vector3> positions;

    bool operator==(Tracker const& other) const;
};

/// What the lens does at one frame.
struct Lens
{
    /// Millimetres.
    double focalLength = 0.0;

    /// How far the picture is shifted to the right, in pixels.
    double shift = 0.0;

    bool operator==(Lens const& other) const;
};

struct Camera
{
    std::string name;

    /// In the scene, without scale.
    Samples<Pose> poses;
    Samples<Lens> lens;

    /// The part of the film that the picture was recorded on, in millimetres, as the picture
    /// is seen: width by height is that of the picture in square pixels.
    Vector2 filmBack;

    bool operator==(Camera const& other) const;
};

struct Shot
{
    /// Its number, from 1, unique in a scene.
    unsigned int number = 0;

    /// That of the clip.
    std::string name;

    /// First and last frame, both included; the last is never before the first.
    int firstFrame = 0;
    int lastFrame = 0;
    double frameRate = 24.0;

    /// Whether frames are fields, at the frame rate: the shot plays at half its speed.
    bool isInterlaced = false;

    /// Of the raster that was tracked: of one field where frames are fields.
    int width = 0;
    int height = 0;

    /// Width of a pixel of the full frame divided by its height.
    double pixelAspect = 1.0;

    /// Distance from the camera at which the picture is hung up, in scene units.
    double screenDistance = 1.0;

    std::optional<Camera> camera;
    std::vector<TrackerGroup> groups;
    std::vector<Tracker> trackers;

    bool operator==(Shot const& other) const;
};

/// Vertices and faces.
struct Mesh
{
    /// From 1, unique among the meshes of a scene.
    unsigned int id = 0;
    std::string name;

    /// What the vertices move with; 0 for the scene itself.
    unsigned int object = 0;

    /// Within the object. Part of it is what the vertices don't say: they are as they came
    /// from a file.
    Pose pose;

    /// All rows have as many vertices.
    Samples<std::vector<Vector3>> vertices;

    /// Vertices of each face, and their indices, one face after the other, counter-clockwise
    /// as seen from the front.
    std::vector<int> faceCounts;
    std::vector<int> faceIndices;

    /// Places in a picture that is put onto the mesh, 0 to 1, v up.
    std::vector<Vector2> uvs;

    /// An index into `uvs` beside each of `faceIndices`. Empty when `uvs` has one for each
    /// vertex, or none.
    std::vector<int> uvIndices;

    /// The place in the picture that belongs to an entry of `faceIndices`; null for none.
    Vector2 const* uvAt(std::size_t corner) const
    {
        if (uvs.empty())
        {
            return nullptr;
        }
        return &uvs[static_cast<std::size_t>(uvIndices.empty() ? faceIndices[corner] : uvIndices[corner])];
    }

    bool operator==(Mesh const& other) const;
};

/// A whole project in memory. Records are public: who fills them keeps what they say of ids
/// and lengths, and check() tells.
class KESTRELIA_API Scene
{
public:
    std::string name;

    /// What a node above everything does; unset for nothing.
    std::optional<Pose> pose;

    /// The frame in which the scene was oriented.
    std::optional<int> referenceFrame;

    std::vector<Object> objects;
    std::vector<Shot> shots;
    std::vector<Mesh> meshes;

    /// Whether there is nothing that a file could be about: no camera, no tracker, no mesh.
    bool isEmpty() const;

    /// Ids that nothing has yet.
    unsigned int freeObjectId() const;
    unsigned int freeTrackerId() const;
    unsigned int freeMeshId() const;

    /// The record of an id; null when there is none.
    Object const* object(unsigned int id) const;
    Mesh const* mesh(unsigned int id) const;
    Tracker const* tracker(unsigned int id) const;

    // Names for messages. They come in one buffer of the scene, which the next of these
    // calls overwrites, cut to its size. What isn't there is "Unknown mesh", "Unknown
    // object", "Unknown Tracker" or "Unknown tracker index".

    char const* meshName(unsigned int id) const;
    char const* objectName(unsigned int id) const;
    char const* trackerName(unsigned int id) const;

    /// @param index into the trackers of a shot
    char const* trackerNameAt(Shot const& shot, std::size_t index) const;

    /// The pose of an object at a frame; the identity for 0 and for what isn't there.
    Pose objectPose(unsigned int id, int frame) const;

    /// Where a solved tracker is in the scene. It must have positions.
    Vector3 worldPosition(Tracker const& tracker, int frame) const;

    /// Whether worldPosition() depends on the frame.
    bool isMoving(Tracker const& tracker) const;

    bool operator==(Scene const& other) const;

private:
    static constexpr std::size_t NAME_SIZE = 256;

    char const* named(std::string const& name) const;

    mutable std::array<char, NAME_SIZE> m_name{};
};

}
