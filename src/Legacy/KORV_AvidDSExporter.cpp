// Avid DS tracking: eight raw function curves, which the user loads one by one into the
// parameters of a corner. `shot_R1x.fraw` is x of the first corner:
//
//   240 20
//   0 600.063 0.000000 0.000000
//   0.04 601.5 0.000000 0.000000
//
// The first line counts the keys and names the kind of curve; a key is the time in seconds,
// the value and two tangents. Corners go row by row from the lower left. x is in pixels; y,
// upwards, in the lines of a picture with square pixels.

#include "Legacy/KORV_AvidDSExporter.h"

#include "Core/DataFormat.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/ZN_ClipInfo.h"
#include "Writing/Frames.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"
#include "Writing/TextBuffer.h"
#include "Writing/ThrowHelpers.h"
#include "Writing/Values.h"

namespace Export
{

namespace
{

using Corners = Korvane::TrackingExporterTypes;

struct CurveFiles
{
    Corners::SurfaceCorner corner;
    char const* x;
    char const* y;
};

constexpr CurveFiles FILES[] = {
    {Corners::LowerLeft, "_R1x", "_R1y"},
    {Corners::LowerRight, "_R2x", "_R2y"},
    {Corners::UpperLeft, "_R3x", "_R3y"},
    {Corners::UpperRight, "_R4x", "_R4y"},
};

constexpr char CURVE_KIND[] = " 20\n";
constexpr char TANGENTS[] = " 0.000000 0.000000\n";
constexpr qint64 LINE_LENGTH = 38;

/// Lines of full frames with square pixels for each line of the clip's raster.
float squareLines(KORV_ProjectManager const& project, float heightScale)
{
    unsigned int const clipId = project.renderingContext()->getDisplayClipID();
    ZN_BaseClipInfo const* const shown = project.pGetParameterManager()->getBaseClipInfo(clipId);
    if (!shown)
    {
        throwBadArgument(QStringLiteral("No clip is shown, whose pixel aspect ratio the curves take"));
    }
    return static_cast<float>(static_cast<double>(heightScale) / shown->format().par());
}

bool isPoint(TXI::Pos2 const& point)
{
    return isWritable(point.x) && isWritable(point.y);
}

}

KORV_AvidDSExporter::KORV_AvidDSExporter() = default;
KORV_AvidDSExporter::~KORV_AvidDSExporter() = default;

Korvane::ExportedFiles KORV_AvidDSExporter::exportTracking(KORV_ProjectManager& project, QString const& path,
                                                           unsigned int layerId, Anm::Context const& referenceFrame,
                                                           Options const& options) const
{
    setUpTrackingHelper(m_helper, project, layerId, referenceFrame.view(), options.framesToExport);
    m_helper.updateSurfacePoints(project, layerId, Anm::Context::Explicit(referenceFrame), options, nullptr);

    float const yFactor = squareLines(project, m_helper.heightScale());
    QString const extension = TrackingDataFormat::AVID_DS().extension();
    QString stem = path;
    stem.chop(extension.size());
    Korvane::ExportedFiles result;
    for (CurveFiles const& files : FILES)
    {
        QByteArray x;
        QByteArray y;
        result.failedCount += pointToStrings(files.corner, x, y, yFactor);
        result.files.insert(stem + QLatin1String(files.x) + extension, x);
        result.files.insert(stem + QLatin1String(files.y) + extension, y);
    }
    appendFailures(result, path, m_helper.failureMessages());
    return result;
}

void KORV_AvidDSExporter::setPixelAspectRatio(double ratio)
{
    m_pixelAspectRatio = ratio;
}

int KORV_AvidDSExporter::pointToStrings(Corners::SurfaceCorner corner, QByteArray& xText, QByteArray& yText,
                                        float yFactor) const
{
    auto const points = m_helper.surfacePoints();
    TXI::Pos2 const* held = nullptr;
    int failedCount = 0;
    forEachFrame(m_helper,
                 [&](int row, int)
                 {
                     TXI::Pos2 const& point = points[row][corner];
                     failedCount += isPoint(point) ? 0 : 1;
                     held = !held && isPoint(point) ? &point : held;
                 });

    int const count = held ? m_helper.numFrames() : 0;
    TextBuffer x(QStringLiteral("Export a layer with a shorter range."));
    TextBuffer y = x;
    x.reserve((count + 1) * LINE_LENGTH);
    y.reserve((count + 1) * LINE_LENGTH);
    x << Integer{count} << CURVE_KIND;
    y << Integer{count} << CURVE_KIND;

    auto const fps = static_cast<double>(static_cast<float>(m_helper.projectManager()->frameRate()));
    auto const frameScale = static_cast<double>(m_helper.frameScale());
    auto const factor = static_cast<double>(yFactor);
    auto const writeFrame = [&](int row, int frame)
    {
        TXI::Pos2 const& point = points[row][corner];
        held = isPoint(point) ? &point : held;
        General const time{frame * frameScale / fps};
        x << time << ' ' << General{held->x} << TANGENTS;
        y << time << ' ' << General{factor * held->y} << TANGENTS;
    };
    if (held)
    {
        forEachFrame(m_helper, writeFrame);
    }
    xText = x.bytes();
    yText = y.bytes();
    return failedCount;
}

}
