#pragma once

#include <pxr/base/gf/vec2f.h>
#include <pxr/base/gf/vec3f.h>
#include <pxr/base/tf/token.h>
#include <pxr/base/vt/array.h>

PXR_NAMESPACE_OPEN_SCOPE

using VtIntArray = VtArray<int>;
using VtTokenArray = VtArray<TfToken>;
using VtVec2fArray = VtArray<GfVec2f>;
using VtVec3fArray = VtArray<GfVec3f>;

PXR_NAMESPACE_CLOSE_SCOPE
