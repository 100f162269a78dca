#pragma once

#include "Host/TrackingExporter.h"

/// Corner lists: a line for each frame with the shown frame number and the four corners of
/// the surface. A format that the library doesn't have, written with what it offers.
class CornerListExporter : public Korvane::TrackingExporter
{
public:
    /// @throws KORV_BadArgument when there is no such layer or its clip is gone
    Korvane::ExportedFiles exportTracking(KORV_ProjectManager& project, QString const& path, unsigned int layerId,
                                          Anm::Context const& referenceFrame, Options const& options) const override;
};
