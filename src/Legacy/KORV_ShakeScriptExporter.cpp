// Shake script: the user opens the file, or copies its text and pastes it into the node
// view, and connects the inputs of the node that is wanted, of three that show one track:
//
//   PosterCornerPin = CornerPin(0,
//      Linear(0,600.063@1003,629.25@1004),
//      ...
//   PosterMatchMove = MatchMove(0, 0, 1, "4 point",
//   PosterStabilize = Stabilize(0, 1, 0, "4 point",
//
// A curve holds value@frame for each frame that the clip shows, in straight lines. There
// are eight of them, x and y in pixels with y up, counter-clockwise from the lower left.
// The nodes have 18, 86 and 76 arguments. As in the scripts that Shake saves, the first two
// tracks of the match move and the stabilizer have two switches each (position; scale and
// turn), which the others lack.

#include "Legacy/KORV_ShakeScriptExporter.h"

#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/ZN_ClipInfo.h"
#include "Writing/Frames.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"
#include "Writing/TextBuffer.h"
#include "Writing/Values.h"

namespace Export
{

namespace
{

using Corners = Korvane::TrackingExporterTypes;

// The host counts row by row, Shake goes around.
constexpr int POINTS[] = {Corners::LowerLeft, Corners::LowerRight, Corners::UpperRight, Corners::UpperLeft};

constexpr int POINT_COUNT = 4;
constexpr int AXIS_COUNT = 2;
constexpr int SWITCHED_TRACKS = 2;

constexpr qint64 NODES = 3;
constexpr qint64 KEY_LENGTH = 14;
constexpr qint64 NODES_LENGTH = 5000;

constexpr char CORNER_PIN_FOOTER[] = R"("default", xFilter, 0, 1, 0, 0.5, 0, 0, time);

)";

// First where the tracks start from, then the node's settings and the boxes in which
// it would search for each track: left, right, bottom and top, of the inner one first.
constexpr char MATCH_MOVE_FOOTER[] = R"(0,                0,
Background.width, 0,
Background.width, Background.height,
0,                Background.height,
0,                0,
Foreground.width, 0,
Foreground.width, Foreground.height,
0,                Foreground.height,
"default", xFilter, 0, 0.5, 0, 1, "Over",
1, "v1.2", 1, 1, "1/16", "luminance", 0.75, "use start frame",
0.5, "stop", 0,
"track1",
Background.width/3-Background.height/30,
Background.width/3+Background.height/30,
Background.height/3-Background.height/30,
Background.height/3+Background.height/30,
Background.width/3-Background.height/15,
Background.width/3+Background.height/15,
Background.height/3-Background.height/15,
Background.height/3+Background.height/15,
"track2",
2*Background.width/3-Background.height/30,
2*Background.width/3+Background.height/30,
Background.height/3-Background.height/30,
Background.height/3+Background.height/30,
2*Background.width/3-Background.height/15,
2*Background.width/3+Background.height/15,
Background.height/3-Background.height/15,
Background.height/3+Background.height/15,
"track3",
2*Background.width/3-Background.height/30,
2*Background.width/3+Background.height/30,
2*Background.height/3-Background.height/30,
2*Background.height/3+Background.height/30,
2*Background.width/3-Background.height/15,
2*Background.width/3+Background.height/15,
2*Background.height/3-Background.height/15,
2*Background.height/3+Background.height/15,
"track4",
Background.width/3-Background.height/30,
Background.width/3+Background.height/30,
2*Background.height/3-Background.height/30,
2*Background.height/3+Background.height/30,
Background.width/3-Background.height/15,
Background.width/3+Background.height/15,
2*Background.height/3-Background.height/15,
2*Background.height/3+Background.height/15);
)";

// The same of a stabilizer, behind its reference frame.
constexpr char STABILIZE_FOOTER[] =
    R"(, 1, 0, 1, "v2.0", 34, "1/16", "luminance", 0.3, 0.59, 0.11, 0.75, "use start frame",
0.5, "stop", 0,
 0, 25,
"track1",
width/3-height/30,
width/3+height/30,
height/3-height/30,
height/3+height/30,
width/3-height/15,
width/3+height/15,
height/3-height/15,
height/3+height/15,
"track2",
2*width/3-height/30,
2*width/3+height/30,
height/3-height/30,
height/3+height/30,
2*width/3-height/15,
2*width/3+height/15,
height/3-height/15,
height/3+height/15,
"track3",
2*width/3-height/30,
2*width/3+height/30,
2*height/3-height/30,
2*height/3+height/30,
2*width/3-height/15,
2*width/3+height/15,
2*height/3-height/15,
2*height/3+height/15,
"track4",
width/3-height/30,
width/3+height/30,
2*height/3-height/30,
2*height/3+height/30,
width/3-height/15,
width/3+height/15,
2*height/3-height/15,
2*height/3+height/15);

)";

/// The layer's name as what a variable's name may begin with: Latin letters, digits and
/// "_", no digit first.
QString scriptName(QString const& layerName)
{
    QString name;
    for (QChar const character : layerName)
    {
        bool const isPlain = character.unicode() < 128 && character.isLetterOrNumber();
        name += isPlain ? character : QLatin1Char('_');
    }
    return name.isEmpty() || name.front().isDigit() ? QLatin1Char('_') + name : name;
}

bool isPoint(TXI::Pos2 const& point)
{
    return isWritable(point.x) && isWritable(point.y);
}

// An input of 0 isn't connected; within a match move its two are called Background and
// Foreground.
void cornerPinScriptHeader(TextBuffer& out, QString const& name)
{
    out << name << "CornerPin = CornerPin(0,\n";
}

void cornerPinScriptFooter(TextBuffer& out)
{
    out << CORNER_PIN_FOOTER;
}

void matchMoveScriptHeader(TextBuffer& out, QString const& name)
{
    out << name << "MatchMove = MatchMove(0, 0, 1, \"4 point\", \n";
}

void matchMoveScriptFooter(TextBuffer& out)
{
    out << MATCH_MOVE_FOOTER;
}

/// The node undoes the motion of its points, or with its switch puts it on. Points of a
/// stabilized export already move against the surface.
void stabilizeScriptHeader(TextBuffer& out, QString const& name, bool arePointsStabilizing)
{
    out << name << "Stabilize = Stabilize(0, 1, " << (arePointsStabilizing ? '1' : '0') << ", \"4 point\",";
}

}

KORV_ShakeScriptExporter::KORV_ShakeScriptExporter() = default;
KORV_ShakeScriptExporter::~KORV_ShakeScriptExporter() = default;

Korvane::ExportedFiles KORV_ShakeScriptExporter::exportTracking(KORV_ProjectManager& project, QString const& path,
                                                                unsigned int layerId,
                                                                Anm::Context const& referenceFrame,
                                                                Options const& options) const
{
    setUpTrackingHelper(m_helper, project, layerId, referenceFrame.view(), options.framesToExport);
    m_helper.updateSurfacePoints(project, layerId, Anm::Context::Explicit(referenceFrame), options, nullptr);
    KORV_Layer const& layer = *project.sm()->layerFromNumericID(layerId, false);
    unsigned int const clipId = layer.trackingInputClipID(true, false, true);
    QString const name = scriptName(layer.name());
    Curves const curves = pointCurves();

    TextBuffer out(sizeAdvice());
    out.reserve(NODES_LENGTH + NODES * POINT_COUNT * AXIS_COUNT * KEY_LENGTH * qint64(m_helper.numFrames()));
    preHeader(out, *project.pGetParameterManager()->getClipInfo(clipId, false));
    cornerPinScript(out, name, curves);
    matchMoveScript(out, name, curves);
    stabilizeScript(out, name, curves, options, referenceFrame.frameValue());
    return fileResult(path, out.bytes(), countUnwritable(), m_helper.failureMessages());
}

// The range of the layer, which is also known where nothing of it is exported.
void KORV_ShakeScriptExporter::preHeader(TextBuffer& out, ZN_ClipInfo const& clip) const
{
    int const start = clip.minIndex(m_helper.view(), Anm::View::Mapped);
    auto const fileNumber = [&](Anm::Time const& frame)
    { return Integer{start + static_cast<int>(frame.value() * static_cast<double>(m_helper.frameScale()))}; };
    out << "# This corresponds to file numbers " << fileNumber(m_helper.inPoint()) << '-'
        << fileNumber(m_helper.outPoint()) << " in the original clip\n"
        << "# Image dimensions " << Integer{clip.width()} << 'x' << Integer{clip.height()} << "\n\n";
}

void KORV_ShakeScriptExporter::cornerPinScript(TextBuffer& out, QString const& name, Curves const& curves)
{
    cornerPinScriptHeader(out, name);
    writeAllPoints(out, curves, false);
    cornerPinScriptFooter(out);
}

void KORV_ShakeScriptExporter::matchMoveScript(TextBuffer& out, QString const& name, Curves const& curves)
{
    matchMoveScriptHeader(out, name);
    writeAllPoints(out, curves, true);
    matchMoveScriptFooter(out);
}

void KORV_ShakeScriptExporter::stabilizeScript(TextBuffer& out, QString const& name, Curves const& curves,
                                               Options const& options, int referenceFrame) const
{
    stabilizeScriptHeader(out, name, options.trackingOption == ZN_TRACKING_OPTION_STABILIZED);
    writeAllPoints(out, curves, true);
    stabilizeScriptFooter(out, referenceFrame);
}

void KORV_ShakeScriptExporter::stabilizeScriptFooter(TextBuffer& out, int referenceFrame) const
{
    out << "\"default\", xFilter, \"trsx\", 0, 0.5, 0, ";
    writeFrame(out, referenceFrame);
    out << STABILIZE_FOOTER;
}

void KORV_ShakeScriptExporter::writeAllPoints(TextBuffer& out, Curves const& curves, bool areTracks)
{
    for (int point = 0; point < POINT_COUNT; ++point)
    {
        bool const hasSwitches = areTracks && point < SWITCHED_TRACKS;
        out << curves[point * AXIS_COUNT] << "),\n" << curves[point * AXIS_COUNT + 1];
        out << (hasSwitches ? "), 1, 1,\n" : "),\n");
    }
}

// The three nodes show the same points: their digits are made once.
KORV_ShakeScriptExporter::Curves KORV_ShakeScriptExporter::pointCurves() const
{
    Curves curves;
    for (int const point : POINTS)
    {
        for (ShakeScriptAxis const axis : {ShakeScriptAxis::X, ShakeScriptAxis::Y})
        {
            TextBuffer curve(sizeAdvice());
            curve.reserve(KEY_LENGTH * (m_helper.numFrames() + 1));
            writePoints(curve, point, axis);
            curves.push_back(curve.bytes());
        }
    }
    return curves;
}

void KORV_ShakeScriptExporter::writePoints(TextBuffer& out, int point, ShakeScriptAxis axis) const
{
    auto const points = m_helper.surfacePoints();
    out << "   Linear(0";
    forEachFrame(m_helper,
                 [&](int row, int frame)
                 {
                     TXI::Pos2 const& p = points[row][point];
                     if (isPoint(p))
                     {
                         out << ',' << General{axis == ShakeScriptAxis::X ? p.x : p.y} << '@';
                         writeFrame(out, frame);
                     }
                 });
}

void KORV_ShakeScriptExporter::writeFrame(TextBuffer& out, int frame) const
{
    int const number = frame + m_helper.baseClipOffset();
    if (m_helper.isInterlaced() && number % 2 != 0)
    {
        out << Fixed{number / 2.0, 1};
        return;
    }
    out << Integer{m_helper.isInterlaced() ? number / 2 : number};
}

int KORV_ShakeScriptExporter::countUnwritable() const
{
    int count = 0;
    auto const points = m_helper.surfacePoints();
    forEachFrame(m_helper,
                 [&](int row, int)
                 {
                     for (int const point : POINTS)
                     {
                         count += isPoint(points[row][point]) ? 0 : 1;
                     }
                 });
    return count;
}

QString KORV_ShakeScriptExporter::sizeAdvice()
{
    return QStringLiteral("Export a layer with a shorter range.");
}

}
