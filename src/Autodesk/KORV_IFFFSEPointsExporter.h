#pragma once

#include "Host/ExporterHelper.h"
#include "Host/TrackingExporter.h"

#include "Core/ExportApi.h"

namespace Export
{

/// Five plain text files: the four corners of the surface and its centre.
class MARLO_EXPORT_API KORV_IFFFSEPointsExporter : public Korvane::TrackingExporter
{
public:
    KORV_IFFFSEPointsExporter();
    ~KORV_IFFFSEPointsExporter() override;

    /// The names of the files are made of `path`; nothing lies under `path` itself. A line with
    /// a value that isn't finite is left out and counted.
    /// @throws KORV_BadArgument when there is no such layer or its clip is gone
    Korvane::ExportedFiles exportTracking(KORV_ProjectManager& project, QString const& path, unsigned int layerId,
                                          Anm::Context const& referenceFrame, Options const& options) const override;

    /// Where a point goes, by the numbers that trackers had up to Flame 2013.
    /// @param index a TrackingExporterTypes::SurfaceCorner, or 4 for the centre
    virtual QString name(int index, QString const& fileName) const;

private:
    mutable Korvane::TrackingExporterHelper m_helper;
};

/// The same files, named by column and row, as trackers are from Flame 2014 on.
class MARLO_EXPORT_API KORV_IFFFSEPointsExporterFlame2014 : public KORV_IFFFSEPointsExporter
{
public:
    KORV_IFFFSEPointsExporterFlame2014();
    ~KORV_IFFFSEPointsExporterFlame2014() override;

    QString name(int index, QString const& fileName) const override;
};

}
