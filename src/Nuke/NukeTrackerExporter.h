#pragma once

#include "Nuke/NukeCornerExporterBase.h"

namespace Export
{

/// A Tracker4 node with a track for each corner of the surface.
class MARLO_EXPORT_API NukeTrackerExporter : public NukeCornerExporterBase
{
public:
    NukeTrackerExporter();
    ~NukeTrackerExporter() override;

    using NukeCornerExporterBase::exportSingleView;
    QString exportSingleView(QString const& name, CornerPin const& pin) const override;
};

}
