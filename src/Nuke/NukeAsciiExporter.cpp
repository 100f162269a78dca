// Nuke Ascii: the user imports each file into a track of a Tracker node ("Import ascii"),
// which asks for the first frame. A file holds a corner of the surface, counter-clockwise
// from the lower left, x and y up, a line for each whole frame:
//
//   600.063 300.125
//   601.5 300.25

#include "Nuke/NukeAsciiExporter.h"

#include "Core/DataFormat.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"
#include "Writing/TextBuffer.h"
#include "Writing/ThrowHelpers.h"
#include "Writing/Values.h"

#include <algorithm>

namespace Export
{

namespace
{

using Points = boost::shared_array<TXI::Pos2[5]>;

constexpr int CORNERS = 4;

// By the host's corner, which are row by row.
constexpr int TRACKER_NUMBERS[CORNERS] = {1, 2, 4, 3};

constexpr qint64 LINE_LENGTH = 20;

bool isPoint(TXI::Pos2 const& point)
{
    return isWritable(point.x) && isWritable(point.y);
}

/// Appends the lines of a corner.
/// @return lines that hold the point of another one
int appendLines(TextBuffer& out, Points const& points, int corner, int count, int step)
{
    int sample = 0;
    while (sample < count && !isPoint(points[sample][corner]))
    {
        sample += step;
    }
    if (sample >= count)
    {
        return (count + step - 1) / step;
    }
    TXI::Pos2 held = points[sample][corner];
    int failedCount = 0;
    for (sample = 0; sample < count; sample += step)
    {
        TXI::Pos2 const& point = points[sample][corner];
        if (isPoint(point))
        {
            held = point;
        }
        else
        {
            ++failedCount;
        }
        out << General{held.x} << ' ' << General{held.y} << '\n';
    }
    return failedCount;
}

}

NukeAsciiExporter::NukeAsciiExporter() = default;
NukeAsciiExporter::~NukeAsciiExporter() = default;

Korvane::ExportedFiles NukeAsciiExporter::exportTracking(KORV_ProjectManager& project, QString const& path,
                                                         unsigned int layerId, Anm::Context const& referenceFrame,
                                                         Options const& options) const
{
    KORV_Layer const* const layer = project.sm()->layerFromNumericID(layerId, false);
    if (!layer)
    {
        throwBadArgument(QStringLiteral("Invalid layer ID"));
    }
    Korvane::ExportedFiles files;
    FailuresByView failures;
    for (Anm::View const& view : options.views)
    {
        Options viewOptions = options;
        viewOptions.views = {view};
        addExportFilesForView(files, project, path, *layer, Anm::Context(referenceFrame.time(), view), viewOptions,
                              options.views.size() > 1);
        failures.emplace_back(project.projProps().views()->name(view), m_helper.failureMessages());
    }
    appendFailures(files, path, failuresOfViews(failures));
    return files;
}

void NukeAsciiExporter::addExportFilesForView(Korvane::ExportedFiles& files, KORV_ProjectManager& project,
                                              QString const& path, KORV_Layer const& layer,
                                              Anm::Context const& referenceFrame, Options const& options,
                                              bool isMultiView) const
{
    setUpTrackingHelper(m_helper, project, layer.numericID(), referenceFrame.view(), options.framesToExport);
    m_helper.updateSurfacePoints(project, layer.numericID(), Anm::Context::Explicit(referenceFrame), options, nullptr);

    TrackingDataFormat const& format = TrackingDataFormat::NUKE_ASCII();
    QString const viewPart = isMultiView ? project.projProps().views()->name(options.views.front()) : QString();
    Points const points = m_helper.surfacePoints();
    int const count = points ? m_helper.numFrames() : 0;
    int const step = std::max(1, static_cast<int>(1.0F / m_helper.frameStep()));
    for (int corner = 0; corner < CORNERS; ++corner)
    {
        TextBuffer text(QStringLiteral("Export a layer with a shorter range."));
        text.reserve(count / step * LINE_LENGTH);
        files.failedCount += appendLines(text, points, corner, count, step);
        files.files.insert(format.baseName(path) + QLatin1String("_Tracker") + viewPart +
                               QString::number(TRACKER_NUMBERS[corner]) + format.extension(),
                           text.bytes());
    }
}

}
