#pragma once
// Numbers of a solve as values of a stage.

#include "Writing/Values.h"
#include "mtx/Sabrel.h"

#include <pxr/base/gf/vec3d.h>
#include <pxr/base/gf/vec3f.h>

#include <cmath>
#include <limits>

namespace Export
{

/// What is too small for a single float is nothing.
inline float toFloat(double value)
{
    return std::abs(value) < static_cast<double>(std::numeric_limits<float>::min()) ? 0.0F : static_cast<float>(value);
}

inline PXR_NS::GfVec3f toFloats(Sabrel::Vector3 const& v)
{
    return PXR_NS::GfVec3f(toFloat(v.x), toFloat(v.y), toFloat(v.z));
}

inline PXR_NS::GfVec3d toDoubles(Sabrel::Vector3 const& v)
{
    return PXR_NS::GfVec3d(v.x, v.y, v.z);
}

/// Whether programs can read all three components.
template <typename Vector>
bool isWritableVector(Vector const& v)
{
    return isWritable(v[0]) && isWritable(v[1]) && isWritable(v[2]);
}

}
