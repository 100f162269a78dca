#pragma once
// How large an export would be, told from a project before anything is computed, and how
// large it may be: a project file of a few lines can ask for millions of frames.

#include "Core/ExportApi.h"
#include "Host/CameraSolveExporter.h"

#include <QString>

#include <vector>

class KORV_Layer;
class KORV_ProjectManager;

namespace Export
{

class FormatEntry;

/// What of a project an export takes.
struct ExportScope
{
    /// Of formats of layers.
    std::vector<KORV_Layer const*> layers;

    /// How many views one export holds.
    std::size_t views = 1;

    /// Of formats of solves.
    KV::CameraSolveExporter::ObjectsToExport objects = KV::CameraSolveExporter::AllObjects;

    /// Of lens formats.
    unsigned int clipId = 1;
};

/// The bytes that an export takes at most, as FormatBytes counts them. It costs as much as
/// looking through the layers and their contours, whatever the number of frames.
///
/// @param enough the points of a solve aren't counted where the rest is more than that; they are
///        looked up, which takes memory for each frame
MARLO_EXPORT_API double estimatedBytes(FormatEntry const& format, KORV_ProjectManager const& project,
                                       ExportScope const& scope, double enough);

/// The most bytes that an export may be estimated at: 20,000 for each byte of the project
/// file, but 64 megabytes for any project, and no more than surely doesn't fit the two
/// gigabytes of one file. Real tracks stay below it: a frame of a track takes as much in the
/// project file as in a pin, and what multiplies it, baked points of contours, is some thousand
/// times that where X-splines of a long shot fill a file of gigabytes.
///
/// @param projectBytes size of the project file
MARLO_EXPORT_API double exportSizeLimit(FormatEntry const& format, qint64 projectBytes);

/// Refuses an export that is too large. Programs that hand projects of others to the operations
/// of Core/ExportFunctions.h ask this first, as the command line tool does; the operations
/// don't know the project file and refuse what doesn't fit a file alone.
///
/// @param advice a sentence that says how the user gets a smaller export
/// @throws KORV_OperationFailed with one line that names the estimate, the limit and the advice
MARLO_EXPORT_API void requireExportSize(FormatEntry const& format, KORV_ProjectManager const& project,
                                        ExportScope const& scope, qint64 projectBytes, QString const& advice);

}
