#pragma once

#include "Core/ExportApi.h"
#include "Core/ExportEnvironment.h"
#include "Host/ShapeExporter.h"

#include <QCoreApplication>

namespace Export::Premiere
{

/// Masks for Premiere, on a filter that the user pastes onto a clip.
class MARLO_EXPORT_API ShapeExporter : public Korvane::ShapeExporter, public IdentifierMinter
{
    Q_DECLARE_TR_FUNCTIONS(Export::Premiere::ShapeExporter)

public:
    ShapeExporter();
    ~ShapeExporter() override;

    /// One text, under `path`, of the first view of the options; empty when no contour has two
    /// points. Layers without a frame in the project are left out, and so are keys with values
    /// that aren't finite, which the entry of errors counts.
    ///
    /// @throws KORV_OperationFailed for a layer whose clip is gone
    /// @throws std::logic_error for a curve that isn't a Bezier curve
    std::shared_ptr<QMap<QString, QByteArray>> exportShape(KORV_ProjectManager& project, QString const& path,
                                                           QList<unsigned int> const& layerIds,
                                                           Options const& options) const override;

    /// Puts the text where Premiere pastes video components from.
    void copyToClipboard(Fnd::IClipboard& clipboard, QString const& text, bool hostPresent) const override;

    void setEnvironment(std::shared_ptr<ExportEnvironment> const& environment) override;

private:
    std::shared_ptr<ExportEnvironment> m_environment;
};

}
