#pragma once

#include "Core/ExportApi.h"
#include "Host/ExporterHelper.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/TrackingExporter.h"

#include <QByteArray>
#include <QCoreApplication>

namespace Export
{

/// Planar layers as the 2D trackers of a project of the matchmoving application Kestrelia.
class MARLO_EXPORT_API Kestrelia2DTrackersExporter : public Korvane::TrackingExporter
{
    Q_DECLARE_TR_FUNCTIONS(Kestrelia2DTrackersExporter)

public:
    ~Kestrelia2DTrackersExporter() override;

    /// The corners of each chosen layer in the current view, with the user's corrections, in the
    /// picture as it was shot: the choices of motion, inversion and lens have no effect.
    /// Layers without tracking data are left out. Without any there is a message and no file.
    ///
    /// @throws KORV_BadArgument when there is no such layer or its clip is gone
    Korvane::ExportedFiles exportTracking(KORV_ProjectManager& project, QString const& path, unsigned int layerId,
                                          Anm::Context const& referenceFrame, Options const& options) const override;

private:
    using Layers = QVector<boost::shared_ptr<KORV_Layer const>>;

    QByteArray exportScene(KORV_ProjectManager& project, Layers const& layers, Korvane::ExportedFiles& result,
                           QString const& path) const;

    mutable Korvane::TrackingExporterHelper m_helper;
};

}
