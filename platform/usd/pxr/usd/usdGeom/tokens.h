#pragma once

#include <pxr/base/tf/token.h>

PXR_NAMESPACE_OPEN_SCOPE

/// The words of geometry in use.
struct UsdGeomTokensType
{
    TfToken const faceVarying{"faceVarying"};
    TfToken const none{"none"};
    TfToken const y{"Y"};
    TfToken const z{"Z"};
};

/// Stands for the real one's static object of that name.
class MARLO_USD_API UsdGeom_Tokens
{
public:
    UsdGeomTokensType const* operator->() const;
};

extern MARLO_USD_API UsdGeom_Tokens const UsdGeomTokens;

PXR_NAMESPACE_CLOSE_SCOPE
