// Stabilizer setups of Flame and its relatives: the user loads the file in the stabilizer's
// menu (Load Setup). Head, channels, and a block of settings for each tracker:
//
//   CreationDate Wed Jul 15 12:10:59 2009
//   ...
//   Channel tracker1/ref/x
//   ...
//   Channel tracker1/shift/x
//   ...
//   ChannelEnd
//   Tracker 0
//   ...
//   End
//
// A tracker's position is `ref - shift`: ref is where it was at the reference frame, shift
// is 0 there and what has to be added to bring the point back elsewhere. Pixels of the full
// frame, y up. What readers need, and the order of channels, is as in setups that Flame saved;
// offset has to follow shift, or the last tracker's shift is lost.

#include "Autodesk/KORV_IFFFSEStabilizerExporter.h"

#include "Autodesk/trackers/TrackerSamples.h"
#include "Host/ZN_ClipInfo.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"
#include "Writing/TextBuffer.h"
#include "Writing/Values.h"
#include "text/Clock.h"

#include <QLocale>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace Export
{

namespace
{

using Point = Korvane::TrackingExporterTypes;

constexpr char const* COLOURS[] = {"255 0 0", "0 255 0", "131 174 255", "0 255 255"};

// Sides of the boxes, in pixels: of the reference pattern and of the area in which it is looked for.
constexpr double REFERENCE_SIZE = 10;
constexpr double TRACK_SIZE = 15;

constexpr char HEADER_CONSTS[] = "AutoKey yes\n"
                                 "MotionPath yes\n"
                                 "Icons yes\n"
                                 "AutoPan yes\n"
                                 "EditMode 0\n"
                                 "Format 0\n"
                                 "Padding\n"
                                 "\tRed 0\n"
                                 "\tGreen 0\n"
                                 "\tBlue 0\n"
                                 "Oversampling no\n"
                                 "Opacity 50\n"
                                 "Zoom 3\n";

constexpr char FOOTER[] = "ChannelEnd\n"
                          "Tracker 0\n"
                          "\tActive yes\n"
                          "\tColour\n"
                          "\t\tRed 100\n"
                          "\t\tGreen 0\n"
                          "\t\tBlue 0\n"
                          "\tFixedRef yes\n"
                          "\tFixedX no\n"
                          "\tFixedY no\n"
                          "\tTolerance 100\n"
                          "Tracker 1\n"
                          "\tActive yes\n"
                          "\tColour\n"
                          "\t\tRed 0\n"
                          "\t\tGreen 100\n"
                          "\t\tBlue 0\n"
                          "\tFixedRef yes\n"
                          "\tFixedX no\n"
                          "\tFixedY no\n"
                          "\tTolerance 100\n"
                          "Tracker 2\n"
                          "\tActive yes\n"
                          "\tColour\n"
                          "\t\tRed 51.3726\n"
                          "\t\tGreen 68.2353\n"
                          "\t\tBlue 100\n"
                          "\tFixedRef no\n"
                          "\tFixedX no\n"
                          "\tFixedY no\n"
                          "\tTolerance 51\n"
                          "Tracker 3\n"
                          "\tActive yes\n"
                          "\tColour\n"
                          "\t\tRed 0\n"
                          "\t\tGreen 100\n"
                          "\t\tBlue 100\n"
                          "\tFixedRef no\n"
                          "\tFixedX no\n"
                          "\tFixedY no\n"
                          "\tTolerance 100\n"
                          "End\n";

// Of a key with its six lines.
constexpr qint64 KEY_LENGTH = 130;

/// The sample nearest to the wanted one whose corners can all be written; the wanted one when
/// there is none.
int usableReference(TrackerSamples const& samples, int wanted)
{
    auto const isUsable = [&samples](int sample)
    {
        for (int corner = 0; corner < 4; ++corner)
        {
            TXI::Pos2 const at = samples.at(sample, corner);
            if (!isWritable(at.x) || !isWritable(at.y))
            {
                return false;
            }
        }
        return true;
    };
    for (int distance = 0; distance < samples.count(); ++distance)
    {
        for (int const sample : {wanted - distance, wanted + distance})
        {
            if (sample >= 0 && sample < samples.count() && isUsable(sample))
            {
                return sample;
            }
        }
    }
    return wanted;
}

struct Key
{
    double frame;
    double value;
};

/// The way from where a corner is back to where it was at the reference sample, with as many
/// keys as there are samples whose points can be written.
std::vector<Key> shiftKeys(TrackerSamples const& samples, int corner, double TXI::Pos2::*axis, int referenceSample)
{
    std::vector<Key> keys;
    keys.reserve(static_cast<std::size_t>(samples.count()));
    for (int sample = 0; sample < samples.count(); ++sample)
    {
        double const shift = samples.at(referenceSample, corner).*axis - samples.at(sample, corner).*axis;
        // Slopes are differences of shifts: those of what a float can hold are finite.
        if (isWritable(shift) && std::abs(shift) <= static_cast<double>(std::numeric_limits<float>::max()))
        {
            keys.push_back({static_cast<double>(samples.frame(sample)), shift});
        }
    }
    return keys;
}

/// How fast the value changes between two keys, per frame.
double slope(Key const& from, Key const& to)
{
    double const perFrame = (to.value - from.value) / (to.frame - from.frame);
    return isWritable(perFrame) ? perFrame : 0;
}

void writeKeyframes(TextBuffer& out, std::vector<Key> const& keys)
{
    for (std::size_t i = 0; i < keys.size(); ++i)
    {
        out << "\tKey " << Integer{static_cast<long long>(i)} << "\n\t\tFrame " << General{keys[i].frame}
            << "\n\t\tValue " << General{keys[i].value} << '\n';
        if (i + 1 < keys.size())
        {
            out << "\t\tRightSlope " << General{slope(keys[i], keys[i + 1])} << '\n';
        }
        if (i > 0)
        {
            out << "\t\tLeftSlope " << General{slope(keys[i - 1], keys[i])} << '\n';
        }
        out << "\t\tInterpolation linear\n"
               "\t\tEnd\n";
    }
}

void writeShift(TextBuffer& out, QString const& tracker, char axis, char const* colour, std::vector<Key> const& keys)
{
    out.reserve(static_cast<qint64>(keys.size()) * KEY_LENGTH);
    out << "Channel " << tracker << "/shift/" << axis
        << "\n"
           "\tExtrapolation linear\n"
           "\tValue 0\n"
           "\tSize "
        << Integer{static_cast<long long>(keys.size())}
        << "\n"
           "\tKeyVersion 1\n";
    writeKeyframes(out, keys);
    out << "\tColour " << colour << "\n\tEnd\n";
}

/// A channel of one key.
void writeValue(TextBuffer& out, QString const& tracker, char const* channel, double value, double frame)
{
    out << "Channel " << tracker << '/' << channel
        << "\n"
           "\tExtrapolation constant\n"
           "\tValue "
        << General{value}
        << "\n"
           "\tSize 1\n"
           "\tKeyVersion 1\n"
           "\tKey 0\n"
           "\t\tFrame "
        << General{frame} << "\n\t\tValue " << General{value}
        << "\n"
           "\t\tInterpolation constant\n"
           "\t\tEnd\n"
           "\tColour 50 50 50 \n"
           "\tEnd\n";
}

/// A channel that keeps its neutral value.
void writeEmpty(TextBuffer& out, QString const& tracker, char const* channel)
{
    out << "Channel " << tracker << '/' << channel << "\n\tColour 50 50 50 \n\tEnd\n";
}

}

KORV_IFFFSEStabilizerExporter::KORV_IFFFSEStabilizerExporter()
    // Row by row from the upper left.
    : KORV_IFFFSEStabilizerExporter({Point::UpperLeft, Point::UpperRight, Point::LowerLeft, Point::LowerRight})
{
}

KORV_IFFFSEStabilizerExporter::KORV_IFFFSEStabilizerExporter(Corners const& corners) : m_corners(corners)
{
}

KORV_IFFFSEStabilizerExporter::~KORV_IFFFSEStabilizerExporter() = default;

Korvane::ExportedFiles KORV_IFFFSEStabilizerExporter::exportTracking(KORV_ProjectManager& project, QString const& path,
                                                                     unsigned int layerId,
                                                                     Anm::Context const& referenceFrame,
                                                                     Options const& options) const
{
    setUpTrackingHelper(m_helper, project, layerId, referenceFrame.view(), options.framesToExport);
    m_helper.updateSurfacePoints(project, layerId, Anm::Context::Explicit(referenceFrame), options, nullptr);

    TrackerSamples const samples(m_helper);
    int const referenceSample = usableReference(samples, samples.nearest(referenceFrame.frameValue()));
    TextBuffer text(QStringLiteral("Export a layer with a shorter range."));
    appendHeader(text, samples.frame(referenceSample));
    int const failedCount = appendPoints(text, samples, referenceSample);
    text << FOOTER;
    return fileResult(path, text.bytes(), failedCount, m_helper.failureMessages());
}

void KORV_IFFFSEStabilizerExporter::appendHeader(TextBuffer& out, float referenceFrame) const
{
    ZN_BaseClipInfo const& clip = *m_helper.baseClipInfo();
    QString const date = QLocale::c().toString(Text::exportTime(), QStringLiteral("ddd MMM d hh:mm:ss yyyy"));
    out << "CreationDate " << date << "\n\n\n" << version() << headerConsts();
    out << "NbTrackers " << Integer{TRACKERS} << "\nSelected 0\nFrameWidth " << Integer{clip.width()}
        << "\nFrameHeight " << General{clip.height() * static_cast<double>(m_helper.verticalScale())}
        << "\nAnimRefFrame " << General{static_cast<double>(referenceFrame)}
        << "\nField no\n"
           "Backward no\n"
           "Anim\n";
}

int KORV_IFFFSEStabilizerExporter::appendPoints(TextBuffer& out, TrackerSamples const& samples,
                                                int referenceSample) const
{
    constexpr std::pair<char, double TXI::Pos2::*> AXES[] = {{'x', &TXI::Pos2::x}, {'y', &TXI::Pos2::y}};
    double const referenceFrame = static_cast<double>(samples.frame(referenceSample));
    double const width = m_helper.baseClipInfo()->width();
    double const height = m_helper.baseClipInfo()->height() * static_cast<double>(m_helper.verticalScale());
    int failedCount = 0;
    for (int index = 0; index < TRACKERS; ++index)
    {
        QString const tracker = trackerName(index);
        int const corner = m_corners[static_cast<std::size_t>(index)];
        auto const constant = [&](char const* channel, double value)
        { writeValue(out, tracker, channel, isWritable(value) ? value : 0, referenceFrame); };

        TXI::Pos2 const reference = samples.count() > 0 ? samples.at(referenceSample, corner) : TXI::Pos2{0, 0};
        constant("ref/x", reference.x);
        constant("ref/y", reference.y);
        constant("ref/width", REFERENCE_SIZE);
        constant("ref/height", REFERENCE_SIZE);
        constant("ref/dx", 0);
        constant("ref/dy", 0);
        constant("track/x", width / 2);
        constant("track/y", height / 2);
        constant("track/width", TRACK_SIZE);
        constant("track/height", TRACK_SIZE);
        for (auto const& [name, axis] : AXES)
        {
            std::vector<Key> const keys = shiftKeys(samples, corner, axis, referenceSample);
            failedCount += samples.count() - static_cast<int>(keys.size());
            writeShift(out, tracker, name, COLOURS[index], keys);
        }
        writeEmpty(out, tracker, "offset/x");
        writeEmpty(out, tracker, "offset/y");
    }
    return failedCount;
}

QString KORV_IFFFSEStabilizerExporter::headerConsts() const
{
    return QString::fromLatin1(HEADER_CONSTS);
}

QString KORV_IFFFSEStabilizerExporter::trackerName(int index) const
{
    return QStringLiteral("tracker%1").arg(index + 1);
}

QString KORV_IFFFSEStabilizerExporter::version() const
{
    return QStringLiteral("StabilizerFileVersion 5.0\n");
}

KORV_IFFFSEStabilizerExporterFlame2014::KORV_IFFFSEStabilizerExporterFlame2014()
    // Column by column, from the bottom.
    : KORV_IFFFSEStabilizerExporter({Point::LowerLeft, Point::UpperLeft, Point::LowerRight, Point::UpperRight})
{
}

KORV_IFFFSEStabilizerExporterFlame2014::~KORV_IFFFSEStabilizerExporterFlame2014() = default;

QString KORV_IFFFSEStabilizerExporterFlame2014::headerConsts() const
{
    return KORV_IFFFSEStabilizerExporter::headerConsts() + QStringLiteral("AutoUpdate yes\n");
}

QString KORV_IFFFSEStabilizerExporterFlame2014::trackerName(int index) const
{
    return QStringLiteral("tracker%1_%2").arg(index / 2).arg(index % 2);
}

QString KORV_IFFFSEStabilizerExporterFlame2014::version() const
{
    return QStringLiteral("StabilizerFileVersion 6.0\n");
}

}
