#pragma once

#include <pxr/base/gf/vec.h>

PXR_NAMESPACE_OPEN_SCOPE

using GfVec3f = Gf_Vec<float, 3>;

PXR_NAMESPACE_CLOSE_SCOPE
