#pragma once

#include <pxr/base/gf/vec.h>

PXR_NAMESPACE_OPEN_SCOPE

using GfVec2f = Gf_Vec<float, 2>;

PXR_NAMESPACE_CLOSE_SCOPE
