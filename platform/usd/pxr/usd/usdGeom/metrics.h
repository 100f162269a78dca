#pragma once

#include <pxr/usd/usd/stage.h>

PXR_NAMESPACE_OPEN_SCOPE

/// @param axis "Y" or "Z"; false, and an error, for another
MARLO_USD_API bool UsdGeomSetStageUpAxis(UsdStageWeakPtr const& stage, TfToken const& axis);
MARLO_USD_API bool UsdGeomSetStageMetersPerUnit(UsdStageWeakPtr const& stage, double metersPerUnit);

PXR_NAMESPACE_CLOSE_SCOPE
