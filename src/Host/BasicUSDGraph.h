#pragma once
// The stage of a USD file, as the host starts it.

#include "Host/HostApi.h"

#include <QString>
#include <pxr/usd/sdf/path.h>
#include <pxr/usd/usd/stage.h>

#include <string>

namespace KV
{

/// A stage with one prim at its top, an "Xform" that is the default prim: programs that reference
/// the file without naming a prim get that one. The up axis is Y. A scene unit is 0.01 metre: lengths
/// of film and lens, which a stage counts in tenths of a unit, are millimetres then, both
/// for programs that convert and for those that don't.
class MARLO_HOST_API BasicUSDGraph
{
public:
    /// @param name of the prim at the top, an identifier
    explicit BasicUSDGraph(QString const& name);

    PXR_NS::UsdStage& stage() const;
    PXR_NS::UsdStageRefPtr const& stagePtr() const;
    PXR_NS::SdfPath const& rootPath() const;

    /// The stage as the text of a .usda file.
    std::string toString() const;

private:
    PXR_NS::UsdStageRefPtr m_stage;
    PXR_NS::SdfPath m_rootPath;
};

}
