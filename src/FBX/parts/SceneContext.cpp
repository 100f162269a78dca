#include "FBX/parts/SceneContext.h"

#include "mtx/SFMEulerAngles.h"
#include "Writing/Values.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace Export
{
namespace FBXParts
{

using Sabrel::Vector3;

namespace
{

/// Where the angles about x and z of a rotation in static order XYZ mean the same axis, only
/// their difference (y up) or sum (y down) counts: the one about z stays that of the rotation
/// before. Radians.
Mtx_Vector4 steadyAtPole(Mtx_Vector4 radians, Mtx_Vector4 const& previous)
{
    constexpr double AT_POLE = 1.001e-10;
    if (std::abs(std::cos(radians.y)) <= AT_POLE)
    {
        double const change = previous.z - radians.z;
        radians.x += std::sin(radians.y) > 0.0 ? change : -change;
        radians.z = previous.z;
    }
    return radians;
}

}

FbxNode& SceneContext::top() const
{
    return sceneRootNode ? *sceneRootNode : *scene->GetRootNode();
}

QByteArray SceneContext::nodeName(QString const& name)
{
    // A control character would end the name, or its field.
    QString printable = name;
    std::replace_if(
        printable.begin(), printable.end(), [](QChar c) { return c.unicode() < 0x20; }, QChar('_'));
    return names.take(printable).toUtf8();
}

Vector3 SceneContext::adjustPosition(Vector3 const& position) const
{
    Vector3 adjusted = position;
    if (isOldSolve)
    {
        adjusted = adjusted - positionOrigin;
        adjusted = {adjusted.x, -adjusted.y, -adjusted.z};
    }
    return positionFactor * adjusted;
}

std::vector<Vector3> SceneContext::adjustPositions(std::vector<Vector3> const& positions) const
{
    std::vector<Vector3> adjusted(positions.size());
    std::transform(positions.begin(), positions.end(), adjusted.begin(),
                   [this](Vector3 const& position) { return adjustPosition(position); });
    return adjusted;
}

std::vector<Vector3> SceneContext::adjustRotations(std::vector<Vector3> const& rotations, Adjust adjust) const
{
    std::vector<Vector3> result;
    result.reserve(rotations.size());
    std::optional<Mtx_Vector4> previous;
    for (Vector3 const& rotation : rotations)
    {
        Mtx_Vector4 euler{rotation.x, rotation.y, rotation.z, 0.0};
        if (adjust)
        {
            euler = (exporter.*adjust)(euler, isStereoRig, isOldSolve);
        }
        if (areWritable(std::initializer_list<double>{euler.x, euler.y, euler.z}))
        {
            Mtx_Vector4 const radians = SFMEulerAngles::eul_to_radians(euler);
            previous = previous ? SFMEulerAngles::eul_continued(steadyAtPole(radians, *previous), *previous) : radians;
            euler = SFMEulerAngles::eul_to_degrees(*previous);
        }
        result.push_back({euler.x, euler.y, euler.z});
    }
    return result;
}

FbxTime SceneContext::timeOf(Anm::Time const& time) const
{
    FbxTime result;
    int const frame = static_cast<int>(project.frameOffset() + time.value());
    result.SetTime(0, 0, 0, frame, 0, 0, fbxTimeMode);
    return result;
}

std::vector<FbxTime> SceneContext::timesOf(std::vector<Anm::Context> const& contexts) const
{
    std::vector<FbxTime> times(contexts.size());
    std::transform(contexts.begin(), contexts.end(), times.begin(),
                   [this](Anm::Context const& context) { return timeOf(context.time()); });
    return times;
}

}
}
