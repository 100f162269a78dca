#pragma once

#include "AfterEffects/AECornerPinExporters.h"

namespace Export
{

/// MarloBlend tracking data: the blocks of the corner pin with motion blur behind a header
/// of their own.
class MARLO_EXPORT_API MarloBlendTrackingExporter : public AECornerPinExporter
{
public:
    MarloBlendTrackingExporter();
    ~MarloBlendTrackingExporter() override;

    /// @throws std::logic_error "Incorrect Clip" for a layer without a clip
    Korvane::ExportedFiles exportTracking(KORV_ProjectManager& project, QString const& path, unsigned int layerId,
                                          Anm::Context const& referenceFrame, Options const& options) const override;

private:
    void writeMarloBlenHeader(AEExportBuilder& builder, bool doubleInterlacedHeight, unsigned int layerId) const;
};

}
