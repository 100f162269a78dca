#pragma once

#include "Nuke/NukeCornerExporterBase.h"

namespace Export
{

/// A CornerPin2D node that puts the whole picture onto the surface.
class MARLO_EXPORT_API NukeCornerPinExporter : public NukeCornerExporterBase
{
public:
    NukeCornerPinExporter();
    ~NukeCornerPinExporter() override;

    using NukeCornerExporterBase::exportSingleView;
    QString exportSingleView(QString const& name, CornerPin const& pin) const override;
};

}
