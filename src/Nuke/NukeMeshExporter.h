#pragma once

#include "Nuke/NukeTrackingExporterBase.h"

namespace Export
{

/// A Tracker4 node with a track for each vertex of the layer's tracked mesh; one without
/// tracks where the layer has no mesh.
class MARLO_EXPORT_API NukeMeshExporter : public NukeTrackingExporterBase
{
public:
    NukeMeshExporter();
    ~NukeMeshExporter() override;

    QString exportSingleView(QString const& name, QVector<NukePointCurve> const& curves) const override;

protected:
    QVector<NukePointCurve> createCurves() const override;
    void writeSingleView(TextBuffer& out, QString const& name, QVector<NukePointCurve> const& curves) const override;
};

}
