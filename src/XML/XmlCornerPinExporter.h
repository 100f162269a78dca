#pragma once

#include "Core/ExportApi.h"
#include "Host/ExporterHelper.h"
#include "Host/TrackingExporter.h"

class ZN_BaseClipInfo;
class ZN_ClipInfo;

namespace Export
{

class TextBuffer;

/// The corners of the surface for Quantel systems, as parts of the picture's width and
/// height.
class MARLO_EXPORT_API KORV_XmlCornerPinExporter : public Korvane::TrackingExporter
{
public:
    KORV_XmlCornerPinExporter();
    ~KORV_XmlCornerPinExporter() override;

    /// The document lies under `path`; it is about the view of `referenceFrame`. Frames with
    /// a corner that isn't finite are left out and counted.
    /// @throws KORV_BadArgument when there is no such layer, or its clip is gone
    /// @throws KORV_OperationFailed when the text is larger than one file can hold
    Korvane::ExportedFiles exportTracking(KORV_ProjectManager& project, QString const& path, unsigned int layerId,
                                          Anm::Context const& referenceFrame, Options const& options) const override;

private:
    /// The blocks of all frames.
    /// @param base of the picture that the corners are parts of
    /// @param clip has the numbers of the files
    /// @return frames that were left out
    int writePoints(TextBuffer& out, ZN_BaseClipInfo const& base, ZN_ClipInfo const& clip) const;

    mutable Korvane::TrackingExporterHelper m_helper;
};

}
