// Motion as matrices, for programs that have their own way with planar motion:
//
//   <MotionInfoDoc>
//      <Object>
//         <Name>
//            Poster
//         </Name>
//         <Frame>
//            <FrameNumber>
//               1003
//            </FrameNumber>
//            <FileNumber>
//               3
//            </FileNumber>
//            <xx>
//               1.05421
//            </xx>
//            ...
//            <zz>
//               1
//            </zz>
//         </Frame>
//      </Object>
//   </MotionInfoDoc>
//
// A matrix acts on column vectors (x, y, 1) in parts of the picture's width and height, y up.
// Only frames from the first to the last tracked one are there. Names are written as they are.

#include "XML/XmlMatricesExporter.h"

#include "Host/Fnd.h"
#include "Host/KORV_Clip.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/ZN_ClipInfo.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"
#include "Writing/TextBuffer.h"
#include "Writing/ThrowHelpers.h"
#include "Writing/Values.h"
#include "XML/parts/FrameElements.h"
#include "XML/parts/NormalisedMotion.h"

#include <algorithm>
#include <array>

namespace Export
{

namespace
{

// In the order of the document, behind the numbers of frame and file.
constexpr std::array<double Mtx_Mat33::*, 9> ENTRIES = {{&Mtx_Mat33::xx, &Mtx_Mat33::xy, &Mtx_Mat33::xz, &Mtx_Mat33::yx,
                                                         &Mtx_Mat33::yy, &Mtx_Mat33::yz, &Mtx_Mat33::zx, &Mtx_Mat33::zy,
                                                         &Mtx_Mat33::zz}};

constexpr qint64 FRAME_LENGTH = 640;

/// Host frames, both included.
struct Span
{
    double first;
    int last;
};

[[noreturn]] void fail(QString const& message)
{
    throwOperationFailed("XmlMatricesExporter", __LINE__, QStringLiteral("exportTracking"), message);
}

Span trackedSpan(KORV_SelectionManager const& layers, KORV_Layer const& layer,
                 Korvane::TrackingExporterHelper const& helper)
{
    auto const isTracked = [&](double frame)
    {
        return layers.isLayerTrackedAtFrame(
            layer, Anm::Context(Anm::Time::fromDouble(frame), Anm::View::defaultView(), Anm::ProxyScale::Full));
    };
    double const lastFrame = helper.lastFrame().value();
    Span span{helper.firstFrame().value(), static_cast<int>(lastFrame)};
    while (span.first <= lastFrame && !isTracked(span.first))
    {
        span.first += 1.0;
    }
    while (span.last >= span.first && !isTracked(span.last))
    {
        span.last -= 1;
    }
    if (span.first > span.last)
    {
        Fnd::Logger::logger().log(Core::LoggerBase::Error, QStringLiteral("No tracking data"));
        fail(QStringLiteral("No tracking data for selected layer within In/Out points"));
    }
    return span;
}

bool isMatrix(Mtx_Mat33 const& matrix)
{
    return std::all_of(ENTRIES.begin(), ENTRIES.end(),
                       [&](double Mtx_Mat33::*entry) { return isWritable(matrix.*entry); });
}

/// @param elements the text around the values
void writeFrame(TextBuffer& out, std::vector<QByteArray> const& elements, double frameNumber, double fileNumber,
                Mtx_Mat33 const& matrix)
{
    auto piece = elements.begin();
    out << *piece++ << General{frameNumber} << *piece++ << General{fileNumber};
    for (double Mtx_Mat33::*const entry : ENTRIES)
    {
        out << *piece++ << General{matrix.*entry};
    }
    out << *piece;
}

}

KORV_XmlMatricesExporter::KORV_XmlMatricesExporter() = default;
KORV_XmlMatricesExporter::~KORV_XmlMatricesExporter() = default;

Korvane::ExportedFiles KORV_XmlMatricesExporter::exportTracking(KORV_ProjectManager& project, QString const& path,
                                                                unsigned int layerId,
                                                                Anm::Context const& referenceFrame,
                                                                Options const& options) const
{
    KORV_SelectionManager const& layers = *project.sm();
    KORV_Layer const* const layer = layers.layerFromNumericID(layerId, false);
    if (!layer)
    {
        fail(QStringLiteral("Cannot find layer"));
    }
    setUpTrackingHelper(m_helper, project, layerId, referenceFrame.view(), options.framesToExport);
    Span const span = trackedSpan(layers, *layer, m_helper);

    KORV_ParameterManager const& clips = *project.pGetParameterManager();
    NormalisedMotion const motion(layers, *layer, *clips.getClip(layer->getBaseClipID()), referenceFrame, options);
    int const firstFile = clips.getClipInfo(layer->trackingInputClipID(true, false, true), false)
                              ->minIndex(Anm::View::defaultView(), Anm::View::Mapped);
    QStringList failures = m_helper.failureMessages();
    int leftOut = 0;
    TextBuffer out(QStringLiteral("Export a layer with a shorter range."));
    out.reserve(static_cast<qint64>(span.last - span.first + 2) * FRAME_LENGTH);
    out << "<MotionInfoDoc>\n"
           "   <Object>\n"
           "      <Name>\n"
        << "         " << layer->name() << "\n"
        << "      </Name>\n";
    std::vector<QByteArray> const elements =
        frameElements({"FrameNumber", "FileNumber", "xx", "xy", "xz", "yx", "yy", "yz", "zx", "zy", "zz"});
    for (double frame = span.first; frame <= span.last; frame += 1.0)
    {
        NormalisedMotion::AtFrame const at = motion.at(static_cast<int>(frame));
        double const number = m_helper.baseClipOffset() + frame;
        if (at.standsIn)
        {
            failures += QStringLiteral("Frame %1: no usable tracking data, the nearest frame stands in for it")
                            .arg(number * static_cast<double>(m_helper.frameScale()));
        }
        if (isMatrix(at.matrix))
        {
            writeFrame(out, elements, number, firstFile + frame, at.matrix);
        }
        else
        {
            ++leftOut;
        }
    }
    out << "   </Object>\n"
           "</MotionInfoDoc>\n";
    return fileResult(path, out.bytes(), leftOut, failures);
}

}
