#pragma once

#include "Core/ExportApi.h"
#include "Host/ExporterHelper.h"
#include "Host/TrackingExporter.h"

#include <array>
#include <vector>

class ZN_ClipInfo;

namespace Export
{

class TextBuffer;

/// A Fusion composition: a loader of the clip, and a tracker whose four patterns follow the
/// corners of the surface along paths.
class MARLO_EXPORT_API KORV_FusionCompExporter : public Korvane::TrackingExporter
{
public:
    KORV_FusionCompExporter();
    ~KORV_FusionCompExporter() override;

    /// The composition lies under `path`; it is about the view of `referenceFrame`. Points
    /// that aren't finite are left out, with their keys, and counted.
    /// @throws KORV_BadArgument when there is no such layer, or its clip is gone
    /// @throws KORV_OperationFailed when the text is larger than one file can hold
    Korvane::ExportedFiles exportTracking(KORV_ProjectManager& project, QString const& path, unsigned int layerId,
                                          Anm::Context const& referenceFrame, Options const& options) const override;

private:
    static constexpr int PATTERNS = 4;

    /// A position of a pattern, in parts of the picture's width and height, y up.
    struct Sample
    {
        TXI::Pos2 position;
        int frame;
    };
    using Path = std::vector<Sample>;
    using Paths = std::array<Path, PATTERNS>;

    /// The head of the composition and the loader.
    /// @param fileName of the clip's first picture
    void preHeader(TextBuffer& out, QString const& fileName, ZN_ClipInfo const& clip) const;
    void inputs(TextBuffer& out, ZN_ClipInfo const& clip) const;

    /// Tracker, paths and their displacements.
    void fusionCompExport(TextBuffer& out, Paths const& paths, int firstFrame) const;
    static void writePath(TextBuffer& out, Path const& path, int number);
    void writeDisplacement(TextBuffer& out, Path const& path, int number) const;

    /// The corners in the order of the patterns, from the upper left row by row.
    /// @param leftOut goes up by the points that aren't finite
    Paths normalizeCoordinates(int& leftOut) const;

    mutable Korvane::TrackingExporterHelper m_helper;
};

}
