#pragma once

#include <pxr/base/tf/weakPtr.h>
#include <pxr/usd/sdf/path.h>
#include <pxr/usd/sdf/primSpec.h>

#include <memory>
#include <string>

PXR_NAMESPACE_OPEN_SCOPE

struct Sdf_LayerData;

/// What a file holds.
class MARLO_USD_API SdfLayer
{
public:
    ~SdfLayer();
    SdfLayer(SdfLayer const&) = delete;
    SdfLayer& operator=(SdfLayer const&) = delete;

    /// Null when there is none.
    SdfPrimSpecHandle GetPrimAtPath(SdfPath const& path);

    std::string GetDocumentation() const;
    void SetDocumentation(std::string const& documentation);

    /// The layer as the text of a .usda file.
    bool ExportToString(std::string* result) const;

    /// Not part of the real one.
    SdfLayer();

    std::shared_ptr<Sdf_LayerData> const& _Data() const
    {
        return m_data;
    }

private:
    std::shared_ptr<Sdf_LayerData> m_data;
};

using SdfLayerRefPtr = TfRefPtr<SdfLayer>;
using SdfLayerHandle = TfWeakPtr<SdfLayer>;

PXR_NAMESPACE_CLOSE_SCOPE
