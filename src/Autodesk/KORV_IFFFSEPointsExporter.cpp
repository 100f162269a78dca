// Point tracker setups, the ".ascii" files that Flame, Flint, Inferno, Smoke and Combustion
// share: the user loads each into a tracker of its number (Load in the tracker's menu). A file
// holds a line for each sample: shown frame, x and y in pixels of the full frame, y up, in
// columns of 6, 10 and 10:
//
//    1.00 :    600.25,    300.50
//    2.00 :    601.75,    300.25

#include "Autodesk/KORV_IFFFSEPointsExporter.h"

#include "Autodesk/trackers/TrackerSamples.h"
#include "Core/DataFormat.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"
#include "Writing/TextBuffer.h"
#include "Writing/Values.h"

namespace Export
{

namespace
{

constexpr int POINTS = 5;
constexpr int FRAME_WIDTH = 6;
constexpr int COORDINATE_WIDTH = 10;
constexpr int DECIMALS = 2;
constexpr qint64 LINE_LENGTH = FRAME_WIDTH + 2 + COORDINATE_WIDTH + 1 + COORDINATE_WIDTH + 1;

// By the helper's point. Number 1 is the upper left corner, the numbers go row by row.
constexpr char const* SUFFIXES[POINTS] = {"_Tracker3", "_Tracker4", "_Tracker1", "_Tracker2", "_Centre"};

// Column, then row from the bottom.
constexpr char const* SUFFIXES_2014[POINTS] = {"_Tracker0_0", "_Tracker1_0", "_Tracker0_1", "_Tracker1_1", "_Centre"};

QString named(QString const& fileName, char const* suffix)
{
    TrackingDataFormat const& format = TrackingDataFormat::IFFFSE_POINTS();
    return QStringLiteral("%1%2%3").arg(format.baseName(fileName), QLatin1String(suffix), format.extension());
}

/// Appends the lines of a point.
/// @return lines that were left out
int appendLines(TextBuffer& out, TrackerSamples const& samples, int point)
{
    int failedCount = 0;
    for (int sample = 0; sample < samples.count(); ++sample)
    {
        TXI::Pos2 const at = samples.at(sample, point);
        if (!isWritable(at.x) || !isWritable(at.y))
        {
            ++failedCount;
            continue;
        }
        out << Fixed{static_cast<double>(samples.frame(sample)), DECIMALS, FRAME_WIDTH} << " :"
            << Fixed{at.x, DECIMALS, COORDINATE_WIDTH} << ',' << Fixed{at.y, DECIMALS, COORDINATE_WIDTH} << '\n';
    }
    return failedCount;
}

}

KORV_IFFFSEPointsExporter::KORV_IFFFSEPointsExporter() = default;
KORV_IFFFSEPointsExporter::~KORV_IFFFSEPointsExporter() = default;

Korvane::ExportedFiles KORV_IFFFSEPointsExporter::exportTracking(KORV_ProjectManager& project, QString const& path,
                                                                 unsigned int layerId,
                                                                 Anm::Context const& referenceFrame,
                                                                 Options const& options) const
{
    setUpTrackingHelper(m_helper, project, layerId, referenceFrame.view(), options.framesToExport);
    m_helper.updateSurfacePoints(project, layerId, Anm::Context::Explicit(referenceFrame), options, nullptr);

    TrackerSamples const samples(m_helper);
    Korvane::ExportedFiles result;
    for (int point = 0; point < POINTS; ++point)
    {
        TextBuffer text(QStringLiteral("Export a layer with a shorter range."));
        text.reserve(samples.count() * LINE_LENGTH);
        result.failedCount += appendLines(text, samples, point);
        result.files.insert(name(point, path), text.bytes());
    }
    appendFailures(result, path, m_helper.failureMessages());
    return result;
}

QString KORV_IFFFSEPointsExporter::name(int index, QString const& fileName) const
{
    return named(fileName, SUFFIXES[index]);
}

KORV_IFFFSEPointsExporterFlame2014::KORV_IFFFSEPointsExporterFlame2014() = default;
KORV_IFFFSEPointsExporterFlame2014::~KORV_IFFFSEPointsExporterFlame2014() = default;

QString KORV_IFFFSEPointsExporterFlame2014::name(int index, QString const& fileName) const
{
    return named(fileName, SUFFIXES_2014[index]);
}

}
