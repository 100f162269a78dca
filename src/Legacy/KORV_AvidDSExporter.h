#pragma once

#include "Core/ExportApi.h"
#include "Host/ExporterHelper.h"
#include "Host/TrackingExporter.h"

namespace Export
{

/// Eight raw curve files that follow the corners of the surface: x and y of each.
class MARLO_EXPORT_API KORV_AvidDSExporter : public Korvane::TrackingExporter
{
public:
    KORV_AvidDSExporter();
    ~KORV_AvidDSExporter() override;

    /// The files lie beside `path`, with what follows its name; the export is about the view
    /// of `referenceFrame`. A line stands for each frame: where a coordinate isn't finite it
    /// holds the one before, or the first that there is, and is counted.
    /// @throws KORV_BadArgument when there is no such layer, or its clip is gone
    /// @throws KORV_OperationFailed when a text is larger than one file can hold
    Korvane::ExportedFiles exportTracking(KORV_ProjectManager& project, QString const& path, unsigned int layerId,
                                          Anm::Context const& referenceFrame, Options const& options) const override;

    /// Keeps a pixel aspect ratio that callers know of. The files take that of the clip that
    /// is shown.
    void setPixelAspectRatio(double ratio);

private:
    /// The two curves of a corner.
    /// @param yFactor what y is multiplied by
    /// @return lines that hold another one's value
    int pointToStrings(Korvane::TrackingExporterTypes::SurfaceCorner corner, QByteArray& xText, QByteArray& yText,
                       float yFactor) const;

    double m_pixelAspectRatio = 1.0;
    mutable Korvane::TrackingExporterHelper m_helper;
};

}
