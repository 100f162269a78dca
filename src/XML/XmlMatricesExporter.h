#pragma once

#include "Core/ExportApi.h"
#include "Host/ExporterHelper.h"
#include "Host/TrackingExporter.h"

namespace Export
{

/// The motion of the surface as a 3x3 matrix for each tracked frame, in coordinates from 0 to
/// 1 of the picture.
class MARLO_EXPORT_API KORV_XmlMatricesExporter : public Korvane::TrackingExporter
{
public:
    KORV_XmlMatricesExporter();
    ~KORV_XmlMatricesExporter() override;

    /// The document lies under `path`; it is about the view of `referenceFrame`, over the span
    /// that is tracked in the default view. Motion goes from the surface's reference frame to
    /// each frame; inverted, back to `referenceFrame`. A frame of the span that another one
    /// stands in for is a message; one with an entry that isn't finite is left out and counted.
    ///
    /// @throws KORV_OperationFailed when there is no such layer, when no frame of it is
    ///         tracked, and when the text is larger than one file can hold
    /// @throws KORV_BadArgument when the layer's clip is gone
    Korvane::ExportedFiles exportTracking(KORV_ProjectManager& project, QString const& path, unsigned int layerId,
                                          Anm::Context const& referenceFrame, Options const& options) const override;

private:
    mutable Korvane::TrackingExporterHelper m_helper;
};

}
