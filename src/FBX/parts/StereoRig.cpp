// A pair of cameras that move as one: an FbxCameraStereo with two cameras as its eyes.

#include "FBX/parts/StereoRig.h"

#include "FBX/parts/Camera.h"
#include "FBX/parts/Keys.h"
#include "Host/ZN_ClipInfo.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Export
{
namespace FBXParts
{

using Rig = ZN::StereoCamera3DParameterSet;
using Number = Anm::Parameter<double>;

namespace
{

constexpr char LEFT_CAMERA[] = "MarloLeftCamera";
constexpr char RIGHT_CAMERA[] = "MarloRightCamera";

/// The frames of the keys up to the end of the playback range, ascending.
std::vector<Anm::Time> keyTimes(SceneContext const& context, std::initializer_list<Number const*> parameters)
{
    Anm::View const view = Anm::View::defaultView();
    std::vector<Anm::Time> times;
    for (Number const* parameter : parameters)
    {
        for (unsigned int key = 0; key < parameter->keyframeCount(view); ++key)
        {
            Anm::Time const time = parameter->keyframeTime(key, view);
            if (!(context.lastFrame < time))
            {
                times.push_back(time);
            }
        }
    }
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end()), times.end());
    return times;
}

/// Linear between keys, held outside of them.
double valueAt(Number const& parameter, Anm::Time const& time)
{
    Anm::View const view = Anm::View::defaultView();
    unsigned int const count = parameter.keyframeCount(view);
    if (count == 0)
    {
        return parameter.staticValue(view);
    }
    // The first key that isn't earlier, by halves: rigs may be keyed in every frame.
    unsigned int first = 0;
    for (unsigned int end = count; first < end;)
    {
        unsigned int const middle = first + (end - first) / 2;
        bool const isEarlier = parameter.keyframeTime(middle, view) < time;
        first = isEarlier ? middle + 1 : first;
        end = isEarlier ? end : middle;
    }
    if (first == 0 || first == count || !(time < parameter.keyframeTime(first, view)))
    {
        return parameter.keyframeValue(std::min(first, count - 1), view);
    }
    double const start = parameter.keyframeTime(first - 1, view).value();
    double const fraction = (time.value() - start) / (parameter.keyframeTime(first, view).value() - start);
    double const before = parameter.keyframeValue(first - 1, view);
    return before + fraction * (parameter.keyframeValue(first, view) - before);
}

/// Sets a property to what `valueOf` makes of a time, with a key wherever one of the
/// parameters has one.
template <typename ValueOf>
void setKeyed(SceneContext& context, FbxPropertyT<FbxDouble>& property, std::initializer_list<Number const*> parameters,
              ValueOf const& valueOf)
{
    double const atStart = valueOf(Anm::Time::fromInt(0));
    if (areKeyable({atStart}))
    {
        property.Set(atStart);
    }
    else
    {
        ++context.failedCount;
    }
    std::vector<Anm::Time> const frames = keyTimes(context, parameters);
    std::vector<FbxTime> times;
    std::vector<double> values;
    for (Anm::Time const& frame : frames)
    {
        times.push_back(context.timeOf(frame));
        values.push_back(valueOf(frame));
    }
    keyNumbers(context, property, times, values);
}

/// Where the directions of view cross.
double crossing(double separation, double degrees)
{
    constexpr double RADIANS_PER_DEGREE = 3.14159265358979323846 / 180.0;
    constexpr double NEVER = std::numeric_limits<float>::max();
    return degrees == 0.0 ? NEVER : separation / (2.0 * std::tan(degrees * RADIANS_PER_DEGREE * 0.5));
}

FbxCamera* buildEye(SceneContext& context, char const* name, Number const& shift,
                    Korvane::CameraSolve::CameraAnimData const& data)
{
    FbxCamera* const eye = FbxCamera::Create(context.scene, name);
    setUpCamera(context, *eye);
    setFocalLength(context, *eye, data);
    double const width = context.solve.baseClipInfo()->width();
    setKeyed(context, eye->FilmOffsetX, {&shift},
             [&](Anm::Time const& time) { return valueAt(shift, time) * -1.0 / width; });
    return eye;
}

}

void buildStereoRig(SceneContext& context, Rig const& parameters, FbxCameraStereo& rig,
                    Korvane::CameraSolve::CameraAnimData const& data)
{
    Anm::View const view = Anm::View::defaultView();
    unsigned int const mode = parameters.eyeSeparationMode().value(view);
    if (mode != Rig::ParallelEyes && mode != Rig::ConvergedEyes)
    {
        return;
    }
    rig.Stereo.Set(mode == Rig::ParallelEyes ? FbxCameraStereo::eParallel : FbxCameraStereo::eConverged);

    Anm::View const right(Anm::View::defaultViewId() + 1);
    rig.SetLeftCamera(buildEye(context, LEFT_CAMERA, parameters.pictureShift(view), data));
    rig.SetRightCamera(buildEye(context, RIGHT_CAMERA, parameters.pictureShift(right), data));

    Number const& separation = parameters.interaxialSeparation();
    setKeyed(context, rig.InteraxialSeparation, {&separation},
             [&](Anm::Time const& time) { return valueAt(separation, time); });
    if (mode == Rig::ConvergedEyes)
    {
        Number const& angle = parameters.convergenceAngle();
        setKeyed(context, rig.ZeroParallax, {&separation, &angle},
                 [&](Anm::Time const& time) { return crossing(valueAt(separation, time), valueAt(angle, time)); });
    }
}

}
}
