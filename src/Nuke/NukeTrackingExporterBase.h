#pragma once

#include "Core/ExportApi.h"
#include "Host/ExporterHelper.h"
#include "Host/TrackingExporter.h"
#include "Nuke/NukeCurve.h"

namespace Export
{

/// What writes a layer's track as Nuke script: one node for each view, one after another
/// in one file.
class MARLO_EXPORT_API NukeTrackingExporterBase : public Korvane::TrackingExporter
{
public:
    NukeTrackingExporterBase();
    ~NukeTrackingExporterBase() override;

    /// The nodes lie under `path`, in the order of `options.views`; without a view there
    /// is an empty file. Keys with values that aren't finite are left out and counted.
    /// @throws KORV_BadArgument when there is no such layer
    /// @throws KORV_OperationFailed when the text is larger than one file can hold
    Korvane::ExportedFiles exportTracking(KORV_ProjectManager& project, QString const& path, unsigned int layerId,
                                          Anm::Context const& referenceFrame, Options const& options) const override;

    /// The node of one view.
    ///
    /// @param name what its name ends in
    /// @param curves as from createCurves()
    virtual QString exportSingleView(QString const& name, QVector<NukePointCurve> const& curves) const = 0;

protected:
    /// What moves, from the helper, which is set up for one view.
    virtual QVector<NukePointCurve> createCurves() const = 0;

    /// Appends the node of one view, without a text of its own in between where a class can
    /// do that. By itself it appends that of exportSingleView().
    virtual void writeSingleView(TextBuffer& out, QString const& name, QVector<NukePointCurve> const& curves) const;

    Korvane::TrackingExporterHelper const& helper() const;

    /// Refuses what can't be one file, before any curve is made.
    ///
    /// @param points how many points move
    /// @param frames how many keys each has
    /// @throws KORV_OperationFailed
    static void refuseMoreThanFits(qint64 points, qint64 frames);

private:
    void setUpHelper(KORV_ProjectManager& project, unsigned int layerId, Anm::Context const& referenceFrame,
                     Options const& options) const;

    mutable Korvane::TrackingExporterHelper m_helper;
};

}
