#include "kestrelia/Scene.h"

#include <algorithm>
#include <cstring>

namespace KestreliaLib
{

namespace
{

// Ids mostly count from 1 in the order of the records.
template <typename Record>
Record const* byId(std::vector<Record> const& records, unsigned int id)
{
    std::size_t const likely = static_cast<std::size_t>(id) - 1;
    if (likely < records.size() && records[likely].id == id)
    {
        return &records[likely];
    }
    auto const found =
        std::find_if(records.begin(), records.end(), [id](Record const& record) { return record.id == id; });
    return found != records.end() ? &*found : nullptr;
}

template <typename Record>
unsigned int largestId(std::vector<Record> const& records)
{
    unsigned int largest = 0;
    for (Record const& record : records)
    {
        largest = std::max(largest, record.id);
    }
    return largest;
}

// Whether a byte goes on with a character that began before it.
bool continuesCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

}

bool Object::operator==(Object const& other) const
{
    return id == other.id && name == other.name && poses == other.poses;
}

bool TrackerGroup::operator==(TrackerGroup const& other) const
{
    return id == other.id && name == other.name;
}

bool Tracker::operator==(Tracker const& other) const
{
    return id == other.id && name == other.name && group == other.group && object == other.object &&
           image == other.image && positions == other.positions;
}

bool Lens::operator==(Lens const& other) const
{
    return focalLength == other.focalLength && shift == other.shift;
}

bool Camera::operator==(Camera const& other) const
{
    return name == other.name && poses == other.poses && lens == other.lens && filmBack == other.filmBack;
}

bool Shot::operator==(Shot const& other) const
{
    return number == other.number && name == other.name && firstFrame == other.firstFrame &&
           lastFrame == other.lastFrame && frameRate == other.frameRate && isInterlaced == other.isInterlaced &&
           width == other.width && height == other.height && pixelAspect == other.pixelAspect &&
           screenDistance == other.screenDistance && camera == other.camera && groups == other.groups &&
           trackers == other.trackers;
}

bool Mesh::operator==(Mesh const& other) const
{
    return id == other.id && name == other.name && object == other.object && pose == other.pose &&
           vertices == other.vertices && faceCounts == other.faceCounts && faceIndices == other.faceIndices &&
           uvs == other.uvs && uvIndices == other.uvIndices;
}

bool Scene::operator==(Scene const& other) const
{
    return name == other.name && pose == other.pose && referenceFrame == other.referenceFrame &&
           objects == other.objects && shots == other.shots && meshes == other.meshes;
}

bool Scene::isEmpty() const
{
    return meshes.empty() && std::all_of(shots.begin(), shots.end(),
                                         [](Shot const& shot) { return !shot.camera && shot.trackers.empty(); });
}

unsigned int Scene::freeObjectId() const
{
    return largestId(objects) + 1;
}

unsigned int Scene::freeMeshId() const
{
    return largestId(meshes) + 1;
}

unsigned int Scene::freeTrackerId() const
{
    unsigned int largest = 0;
    for (Shot const& shot : shots)
    {
        largest = std::max(largest, largestId(shot.trackers));
    }
    return largest + 1;
}

Object const* Scene::object(unsigned int id) const
{
    return byId(objects, id);
}

Mesh const* Scene::mesh(unsigned int id) const
{
    return byId(meshes, id);
}

Tracker const* Scene::tracker(unsigned int id) const
{
    for (Shot const& shot : shots)
    {
        if (Tracker const* const found = byId(shot.trackers, id))
        {
            return found;
        }
    }
    return nullptr;
}

char const* Scene::named(std::string const& text) const
{
    std::size_t length = std::min(text.size(), NAME_SIZE - 1);
    while (length < text.size() && length > 0 && continuesCharacter(text[length]))
    {
        --length;
    }
    std::memcpy(m_name.data(), text.data(), length);
    m_name[length] = '\0';
    return m_name.data();
}

char const* Scene::meshName(unsigned int id) const
{
    Mesh const* const found = mesh(id);
    return named(found ? found->name : "Unknown mesh");
}

char const* Scene::objectName(unsigned int id) const
{
    Object const* const found = object(id);
    return named(found ? found->name : "Unknown object");
}

char const* Scene::trackerName(unsigned int id) const
{
    Tracker const* const found = tracker(id);
    return named(found ? found->name : "Unknown Tracker");
}

char const* Scene::trackerNameAt(Shot const& shot, std::size_t index) const
{
    return named(index < shot.trackers.size() ? shot.trackers[index].name : "Unknown tracker index");
}

Pose Scene::objectPose(unsigned int id, int frame) const
{
    Object const* const found = object(id);
    return found && !found->poses.isEmpty() ? found->poses.at(frame) : Pose();
}

Vector3 Scene::worldPosition(Tracker const& tracker, int frame) const
{
    return objectPose(tracker.object, frame).apply(tracker.positions.at(frame));
}

bool Scene::isMoving(Tracker const& tracker) const
{
    Object const* const carrier = object(tracker.object);
    return tracker.positions.isMoving() || (carrier && carrier->poses.isMoving());
}

}
