#include "Host/BasicUSDGraph.h"

#include "Host/Product.h"

#include <pxr/base/tf/token.h>
#include <pxr/usd/sdf/layer.h>
#include <pxr/usd/usdGeom/metrics.h>
#include <pxr/usd/usdGeom/tokens.h>
#include <pxr/usd/usdGeom/xform.h>

PXR_NAMESPACE_USING_DIRECTIVE

namespace KV
{

BasicUSDGraph::BasicUSDGraph(QString const& name)
    : m_stage(UsdStage::CreateInMemory()),
      m_rootPath(SdfPath::AbsoluteRootPath().AppendChild(TfToken(name.toStdString())))
{
    constexpr double CENTIMETRE = 0.01;
    UsdGeomSetStageUpAxis(m_stage, UsdGeomTokens->y);
    UsdGeomSetStageMetersPerUnit(m_stage, CENTIMETRE);
    m_stage->GetRootLayer()->SetDocumentation("Exported from " + Product::displayName().toStdString());
    m_stage->SetDefaultPrim(UsdGeomXform::Define(m_stage, m_rootPath).GetPrim());
}

UsdStage& BasicUSDGraph::stage() const
{
    return *m_stage;
}

UsdStageRefPtr const& BasicUSDGraph::stagePtr() const
{
    return m_stage;
}

SdfPath const& BasicUSDGraph::rootPath() const
{
    return m_rootPath;
}

std::string BasicUSDGraph::toString() const
{
    std::string text;
    m_stage->GetRootLayer()->ExportToString(&text);
    return text;
}

}
