// Fusion composition: the user opens the file, or a text editor copies its tools into another
// one.
//
//   Composition {
//   	CurrentTime = 1003,
//   	...
//   	Tools = {
//   		Loader1 = Loader { ... },             the clip
//   		Tracker1 = Tracker { ... },           four patterns
//   		Path1 = PolyPath { ... },             the way of a pattern, a point for each frame
//   		...
//   		Path1Displacement = BezierSpline {    how much of its length is covered by when
//   			...
//   				[1003] = { 0, Flags = { Linear = true, LockedY = true, }, },
//   		...
//   	},
//   }
//
// It is a table of Lua. Patterns are the corners row by row from the upper left one. Patterns
// count from the picture's lower left corner, points from its middle, both in its widths and
// heights, y up. A path of no length has "nan" for its shares of that length.

#include "Fusion/FusionCompExporter.h"

#include "Host/KORV_Clip.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/ZN_ClipInfo.h"
#include "Writing/Frames.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"
#include "Writing/TextBuffer.h"
#include "Writing/Values.h"

#include <algorithm>
#include <cmath>

namespace Export
{

namespace
{

using Corners = Korvane::TrackingExporterTypes;

constexpr Corners::SurfaceCorner PATTERN_CORNERS[] = {Corners::UpperLeft, Corners::UpperRight, Corners::LowerLeft,
                                                      Corners::LowerRight};

// Of a frame, four points and four keys.
constexpr qint64 FRAME_LENGTH = 4 * 150;
constexpr qint64 TOOLS_LENGTH = 8192;

constexpr char CLIP_SWITCHES[] = "\t\t\t\t\tMultiframe = false,\n"
                                 "\t\t\t\t\tSaving = false,\n"
                                 "\t\t\t\t\tLengthSetManually = true,\n"
                                 "\t\t\t\t\tTrimIn = 0,\n";
constexpr char CLIP_ENDS[] = "\t\t\t\t\tExtendFirst = 0,\n"
                             "\t\t\t\t\tExtendLast = 0,\n"
                             "\t\t\t\t\tLoop = 1,\n"
                             "\t\t\t\t\tReverse = false,\n";
constexpr char CLIP_CODES[] = "\t\t\t\t\tAspectMode = 0,\n"
                              "\t\t\t\t\tDepth = 0,\n"
                              "\t\t\t\t\tTimeCode = 0,\n"
                              "\t\t\t\t\tKeyCode = \"\",\n";
constexpr char PATH_SWITCHES[] = "\t\t\tShowKeyPoints = false,\n"
                                 "\t\t\tShowHandles = false,\n"
                                 "\t\t\tShowPolyLine = true,\n"
                                 "\t\t\tStopRendering = false,\n"
                                 "\t\t\tDrawMode = 4,\n"
                                 "\t\t\tInputs = {\n"
                                 "\t\t\t\tDisplacement = Input {\n";

/// What Fusion calls the format of a clip's files; null where it finds out by itself.
char const* formatName(ZN_ClipInfo const& clip)
{
    switch (clip.fileFormat())
    {
    case ZN_ClipInfo::PngFormat:
        return "PngFormat";
    case ZN_ClipInfo::TiffFormat:
        return "TiffFormat";
    case ZN_ClipInfo::JpegFormat:
        return "JpegFormat";
    case ZN_ClipInfo::DpxFormat:
        return "DpxFormat";
    case ZN_ClipInfo::CineonFormat:
        return "CineonFormat";
    case ZN_ClipInfo::SgiFormat:
        return "SgiFormat";
    case ZN_ClipInfo::TargaFormat:
        return "TargaFormat";
    default:
        return nullptr;
    }
}

/// The text as it stands between the quotes of a string of Lua.
QString escaped(QString text)
{
    return text.replace(QLatin1Char('\\'), QLatin1String("\\\\")).replace(QLatin1Char('"'), QLatin1String("\\\""));
}

void pullOffset(TextBuffer& out, ZN_ClipInfo const& clip)
{
    constexpr int POSITIONS = 5;
    int const position =
        clip.bIs32Pulldown() ? (clip.phase() - ZN_BaseClipInfo::PulldownUpperFieldFirst) % POSITIONS : 0;
    out << "\t\t\t\t\tImportMode = " << (clip.bIs32Pulldown() ? '1' : '0') << ",\n"
        << "\t\t\t\t\tPullOffset = " << Integer{position} << ",\n";
}

void viewInfo(TextBuffer& out, char const* position)
{
    out << "\t\t\tViewInfo = OperatorInfo {\n"
           "\t\t\t\tPos = { "
        << position
        << ", },\n"
           "\t\t\t},\n"
           "\t\t},\n";
}

double distance(TXI::Pos2 const& a, TXI::Pos2 const& b)
{
    return std::hypot(b.x - a.x, b.y - a.y);
}

/// A share of a path's length; a path of none has none.
void writeShare(TextBuffer& out, double run, double total)
{
    if (total == 0)
    {
        out << "nan";
        return;
    }
    out << General{static_cast<double>(static_cast<float>(run / total))};
}

}

KORV_FusionCompExporter::KORV_FusionCompExporter() = default;
KORV_FusionCompExporter::~KORV_FusionCompExporter() = default;

Korvane::ExportedFiles KORV_FusionCompExporter::exportTracking(KORV_ProjectManager& project, QString const& path,
                                                               unsigned int layerId, Anm::Context const& referenceFrame,
                                                               Options const& options) const
{
    setUpTrackingHelper(m_helper, project, layerId, referenceFrame.view(), options.framesToExport);
    KORV_ParameterManager const& clips = *project.pGetParameterManager();
    KORV_Clip const& clip =
        *clips.getClip(project.sm()->layerFromNumericID(layerId, false)->trackingInputClipID(true, false, true));
    Anm::Context const start(Anm::Time::fromInt(0), referenceFrame.view(), Anm::ProxyScale::Full);
    QString const fileName = clips.getFrameSourceFile(clip, Anm::Context::Explicit(start), false);

    TextBuffer out(QStringLiteral("Export a layer with a shorter range."));
    out.reserve(TOOLS_LENGTH + m_helper.numFrames() * FRAME_LENGTH);
    preHeader(out, fileName, clip.info());
    m_helper.updateSurfacePoints(project, layerId, Anm::Context::Explicit(referenceFrame), options, nullptr);
    int leftOut = 0;
    fusionCompExport(out, normalizeCoordinates(leftOut), static_cast<int>(m_helper.firstFrame().value()));
    return fileResult(path, out.bytes(), leftOut, m_helper.failureMessages());
}

// Ranges start at the clip's offset, wherever the layer does, and fields halve their length
// alone.
void KORV_FusionCompExporter::preHeader(TextBuffer& out, QString const& fileName, ZN_ClipInfo const& clip) const
{
    Integer const offset{m_helper.baseClipOffset()};
    int const frames = m_helper.isInterlaced() ? m_helper.numFrames() >> 1 : m_helper.numFrames();
    Integer const last{frames - 1 + offset.value};
    int const min = clip.minIndex(Anm::View::defaultView(), Anm::View::Mapped);
    int const max = clip.maxIndex(Anm::View::defaultView(), Anm::View::Mapped);
    out << "Composition {\n"
        << "\tCurrentTime = " << General{static_cast<double>(offset.value) + m_helper.firstFrame().value()} << ",\n"
        << "\tRenderRange = { " << offset << ", " << last << ", },\n"
        << "\tGlobalRange = { " << offset << ", " << last << ", },\n"
        << "\tTools = {\n"
           "\t\tLoader1 = Loader {\n"
           "\t\t\tClips = {\n"
           "\t\t\t\tClip {\n"
           "\t\t\t\t\tID = \"Clip1\",\n"
        << "\t\t\t\t\tFilename = \"" << escaped(fileName) << "\",\n";
    if (char const* const format = formatName(clip))
    {
        out << "\t\t\t\t\tFormatID = \"" << format << "\",\n";
    }
    out << "\t\t\t\t\tStartFrame = " << Integer{min} << ",\n"
        << "\t\t\t\t\tLength = " << Integer{1 - min + max} << ",\n"
        << CLIP_SWITCHES << "\t\t\t\t\tTrimOut = " << Integer{max - min} << ",\n"
        << CLIP_ENDS;
    pullOffset(out, clip);
    out << CLIP_CODES << "\t\t\t\t\tGlobalStart = " << offset << ",\n"
        << "\t\t\t\t\tGlobalEnd = " << last << ",\n"
        << "\t\t\t\t},\n"
           "\t\t\t},\n"
           "\t\t\tInputs = {\n";
    inputs(out, clip);
    out << "\t\t\t},\n";
    viewInfo(out, "50, 20");
}

void KORV_FusionCompExporter::inputs(TextBuffer& out, ZN_ClipInfo const& clip) const
{
    int const phase = clip.phase();
    if (m_helper.isInterlaced())
    {
        out << "\t\t\t\tProcessMode = Input {\n"
            << "\t\t\t\t\tValue = FuID { \"" << (phase == ZN_BaseClipInfo::LowerFieldFirst ? "NTSC" : "PAL")
            << "\", },\n"
               "\t\t\t\t},\n";
    }
    bool const isUpperFirst =
        phase == ZN_BaseClipInfo::UpperFieldFirst ||
        (phase >= ZN_BaseClipInfo::PulldownUpperFieldFirst && phase < ZN_BaseClipInfo::PulldownLowerFieldFirst);
    if (clip.bIs32Pulldown() && !isUpperFirst)
    {
        out << "\t\t\t\tSwapFieldDominance = Input {\n"
               "\t\t\t\t\tValue = 1,\n"
               "\t\t\t\t},\n";
    }
}

KORV_FusionCompExporter::Paths KORV_FusionCompExporter::normalizeCoordinates(int& leftOut) const
{
    auto const points = m_helper.surfacePoints();
    double const width = m_helper.baseClipInfo()->width();
    double const height = m_helper.baseClipInfo()->height();
    Paths paths;
    for (int pattern = 0; pattern < PATTERNS; ++pattern)
    {
        Path& path = paths[static_cast<std::size_t>(pattern)];
        path.reserve(static_cast<std::size_t>(m_helper.numFrames()));
        forEachFrame(m_helper,
                     [&](int row, int frame)
                     {
                         TXI::Pos2 const& corner = points[row][PATTERN_CORNERS[pattern]];
                         if (!isWritable(corner.x) || !isWritable(corner.y))
                         {
                             ++leftOut;
                             return;
                         }
                         path.push_back({{corner.x / width, corner.y / height}, frame});
                     });
    }
    return paths;
}

void KORV_FusionCompExporter::fusionCompExport(TextBuffer& out, Paths const& paths, int firstFrame) const
{
    auto const startOf = [](Path const& path) { return path.empty() ? TXI::Pos2{0.5, 0.5} : path.front().position; };
    out << "\t\tTracker1 = Tracker {\n"
           "\t\t\tTrackers = {\n";
    for (Path const& path : paths)
    {
        out << "\t\t\t\t{\n"
            << "\t\t\t\t\tPatternTime = " << Integer{firstFrame} << ",\n"
            << "\t\t\t\t\tPatternX = " << General{startOf(path).x} << ",\n"
            << "\t\t\t\t\tPatternY = " << General{startOf(path).y} << ",\n"
            << "\t\t\t\t},\n";
    }
    out << "\t\t\t},\n"
           "\t\t\tInputs = {\n"
           "\t\t\t\tInput = Input {\n"
           "\t\t\t\t\tSourceOp = \"Loader1\",\n"
           "\t\t\t\t\tSource = \"Output\",\n"
           "\t\t\t\t},\n"
           "\t\t\t\tTrackerList = Input {\n"
           "\t\t\t\t\tValue = 1,\n"
           "\t\t\t\t},\n";
    for (int n = 1; n <= PATTERNS; ++n)
    {
        TXI::Pos2 const start = startOf(paths[static_cast<std::size_t>(n - 1)]);
        Integer const number{n};
        out << "\t\t\t\tName" << number << " = Input {\n\t\t\t\t\tValue = \"Tracker " << number << "\",\n\t\t\t\t},\n"
            << "\t\t\t\tPatternCenter" << number << " = Input {\n\t\t\t\t\tValue = { " << General{start.x} << ", "
            << General{start.y} << ", },\n\t\t\t\t},\n"
            << "\t\t\t\tTrackedCenter" << number << " = Input {\n\t\t\t\t\tSourceOp = \"Path" << number
            << "\",\n\t\t\t\t\tSource = \"Position\",\n\t\t\t\t},\n";
    }
    out << "\t\t\t},\n";
    viewInfo(out, "160, 20");
    for (int n = 1; n <= PATTERNS; ++n)
    {
        writePath(out, paths[static_cast<std::size_t>(n - 1)], n);
    }
    for (int n = 1; n <= PATTERNS; ++n)
    {
        writeDisplacement(out, paths[static_cast<std::size_t>(n - 1)], n);
    }
    out << "\t},\n"
           "}\n\n";
}

void KORV_FusionCompExporter::writePath(TextBuffer& out, Path const& path, int number)
{
    out << "\t\tPath" << Integer{number} << " = PolyPath {\n"
        << PATH_SWITCHES << "\t\t\t\t\tSourceOp = \"Path" << Integer{number}
        << "Displacement\",\n"
           "\t\t\t\t\tSource = \"Value\",\n"
           "\t\t\t\t},\n"
           "\t\t\t\tPolyLine = Input {\n"
           "\t\t\t\t\tValue = Polyline {\n"
           "\t\t\t\t\t\tClosed = false,\n"
           "\t\t\t\t\t\tPoints = {\n";
    for (Sample const& sample : path)
    {
        out << "\t\t\t\t\t\t\t{ Linear = true, LockY = true, X = " << General{sample.position.x - 0.5}
            << ", Y = " << General{sample.position.y - 0.5} << ", },\n";
    }
    out << "\t\t\t\t\t\t},\n"
           "\t\t\t\t\t},\n"
           "\t\t\t\t},\n"
           "\t\t\t},\n"
           "\t\t},\n";
}

void KORV_FusionCompExporter::writeDisplacement(TextBuffer& out, Path const& path, int number) const
{
    out << "\t\tPath" << Integer{number}
        << "Displacement = BezierSpline {\n"
           "\t\t\tSplineName = \"Path"
        << Integer{number}
        << "Displacement\",\n"
           "\t\t\tNameSet = true,\n"
           "\t\t\tKeyFrames = {\n";
    double total = 0;
    for (std::size_t i = 1; i < path.size(); ++i)
    {
        total += distance(path[i - 1].position, path[i].position);
    }
    float const step = m_helper.isInterlaced() ? 0.5F : 1.0F;
    double run = 0;
    for (std::size_t i = 0; i < path.size(); ++i)
    {
        float const key = static_cast<float>(m_helper.baseClipOffset() + path[i].frame) * step;
        out << "\t\t\t\t[" << General{static_cast<double>(key)} << "] = { ";
        writeShare(out, run, total);
        out << ", Flags = { Linear = true, LockedY = true, }, },\n";
        run += i + 1 < path.size() ? distance(path[i].position, path[i + 1].position) : 0;
    }
    out << "\t\t\t},\n"
           "\t\t},\n";
}

}
