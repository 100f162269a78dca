#pragma once
// Properties of the scene and their curves over time.

#include "FBX/parts/SceneContext.h"

namespace Export
{
namespace FBXParts
{

/// Sets a property to the first of the values and makes a linear key of each. What a reader
/// can't take is left out and counted, a row of three as a whole.
///
/// @param times one for each value
void keyVectors(SceneContext& context, FbxPropertyT<FbxDouble3>& property, std::vector<FbxTime> const& times,
                std::vector<Sabrel::Vector3> const& values);
void keyNumbers(SceneContext& context, FbxPropertyT<FbxDouble>& property, std::vector<FbxTime> const& times,
                std::vector<double> const& values);

/// As keyVectors, but without keys when there is but one value.
void setVectors(SceneContext& context, FbxPropertyT<FbxDouble3>& property, std::vector<FbxTime> const& times,
                std::vector<Sabrel::Vector3> const& values);

/// Whether a key can hold the values: keys are single floats.
bool areKeyable(std::initializer_list<double> values);

FbxDouble3 toFbx(Sabrel::Vector3 const& vector);

}
}
