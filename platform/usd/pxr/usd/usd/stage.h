#pragma once

#include <pxr/usd/sdf/layer.h>
#include <pxr/usd/usd/prim.h>

PXR_NAMESPACE_OPEN_SCOPE

class UsdStage;
using UsdStageRefPtr = TfRefPtr<UsdStage>;
using UsdStagePtr = TfWeakPtr<UsdStage>;
using UsdStageWeakPtr = TfWeakPtr<UsdStage>;

/// A scene. This one has a single layer, its root layer.
class MARLO_USD_API UsdStage
{
public:
    UsdStage(UsdStage const&) = delete;
    UsdStage& operator=(UsdStage const&) = delete;

    static UsdStageRefPtr CreateInMemory();

    SdfLayerHandle GetRootLayer() const;
    UsdPrim GetPrimAtPath(SdfPath const& path) const;

    /// Makes the prim a defined one, of that type if one is given, and all above it; what was there
    /// keeps its place and its values.
    /// @return invalid, with an error, for a path that isn't absolute and inside of a change block
    UsdPrim DefinePrim(SdfPath const& path, TfToken const& typeName = TfToken());

    UsdPrim GetDefaultPrim() const;

    /// @param prim a valid one
    void SetDefaultPrim(UsdPrim const& prim);

    double GetStartTimeCode() const;
    void SetStartTimeCode(double time);
    double GetEndTimeCode() const;
    void SetEndTimeCode(double time);
    double GetTimeCodesPerSecond() const;
    void SetTimeCodesPerSecond(double rate) const;
    double GetFramesPerSecond() const;
    void SetFramesPerSecond(double rate) const;

private:
    UsdStage();

    SdfLayerRefPtr m_layer;
};

PXR_NAMESPACE_CLOSE_SCOPE
