// Quantel corner pin: the user loads the document into the corner pin of an effect.
//
//   <CornerPinInfoDoc>
//      <Normalised>
//         yes
//      </Normalised>
//      <Object>
//         <Name>
//            Poster
//         </Name>
//         <Frame>
//            <FrameNumber>
//               12
//            </FrameNumber>
//            ...
//            <toprighty>
//               0.639352
//            </toprighty>
//         </Frame>
//      </Object>
//   </CornerPinInfoDoc>
//
// A value stands on a line of its own, x divided by the width and y, upwards, by the height of
// the picture. Readers take the first line and the last element of a frame for its marks, so
// nothing stands in front of them or behind. Names are written as they are.

#include "XML/XmlCornerPinExporter.h"

#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/ZN_ClipInfo.h"
#include "Writing/Frames.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"
#include "Writing/TextBuffer.h"
#include "Writing/Values.h"
#include "XML/parts/FrameElements.h"

#include <algorithm>

namespace Export
{

namespace
{

using Corners = Korvane::TrackingExporterTypes;

// In the order of the document, behind the numbers of frame and file.
constexpr Corners::SurfaceCorner CORNERS[] = {Corners::LowerLeft, Corners::LowerRight, Corners::UpperLeft,
                                              Corners::UpperRight};

constexpr qint64 FRAME_LENGTH = 840;

bool isRow(TXI::Pos2 const (&row)[5])
{
    return std::all_of(std::begin(CORNERS), std::end(CORNERS),
                       [&](Corners::SurfaceCorner corner)
                       { return isWritable(row[corner].x) && isWritable(row[corner].y); });
}

}

KORV_XmlCornerPinExporter::KORV_XmlCornerPinExporter() = default;
KORV_XmlCornerPinExporter::~KORV_XmlCornerPinExporter() = default;

Korvane::ExportedFiles KORV_XmlCornerPinExporter::exportTracking(KORV_ProjectManager& project, QString const& path,
                                                                 unsigned int layerId,
                                                                 Anm::Context const& referenceFrame,
                                                                 Options const& options) const
{
    setUpTrackingHelper(m_helper, project, layerId, referenceFrame.view(), options.framesToExport);
    m_helper.updateSurfacePoints(project, layerId, Anm::Context::Explicit(referenceFrame), options, nullptr);
    KORV_Layer const& layer = *project.sm()->layerFromNumericID(layerId, false);
    unsigned int const clipId = layer.trackingInputClipID(true, false, true);

    TextBuffer out(QStringLiteral("Export a layer with a shorter range."));
    out.reserve((m_helper.numFrames() + 1) * FRAME_LENGTH);
    out << "<CornerPinInfoDoc>\n"
           "   <Normalised>\n"
           "      yes\n"
           "   </Normalised>\n"
           "   <Object>\n"
           "      <Name>\n"
        << "         " << layer.name() << "\n"
        << "      </Name>\n";
    int const leftOut =
        writePoints(out, *m_helper.baseClipInfo(), *project.pGetParameterManager()->getClipInfo(clipId, false));
    out << "   </Object>\n"
           "</CornerPinInfoDoc>\n";
    return fileResult(path, out.bytes(), leftOut, m_helper.failureMessages());
}

// Frames count from the host's first one, without the clip's offset; the second field of a
// frame is at half a number and in the frame's file.
int KORV_XmlCornerPinExporter::writePoints(TextBuffer& out, ZN_BaseClipInfo const& base, ZN_ClipInfo const& clip) const
{
    double const step = base.bIsInterlaced() ? 0.5 : 1.0;
    int const firstFile = clip.minIndex(Anm::View::defaultView(), Anm::View::Mapped);
    std::vector<QByteArray> const elements =
        frameElements({"FrameNumber", "FileNumber", "bottomleftx", "bottomlefty", "bottomrightx", "bottomrighty",
                       "topleftx", "toplefty", "toprightx", "toprighty"});
    auto const points = m_helper.surfacePoints();
    int leftOut = 0;
    auto const writeFrame = [&](int row, int frame)
    {
        TXI::Pos2 const(&corners)[5] = points[row];
        if (!isRow(corners))
        {
            ++leftOut;
            return;
        }
        double const time = frame * step;
        auto piece = elements.begin();
        out << *piece++ << General{static_cast<double>(static_cast<float>(time))};
        out << *piece++ << Integer{static_cast<int>(firstFile + time)};
        for (Corners::SurfaceCorner const corner : CORNERS)
        {
            out << *piece++ << General{corners[corner].x / base.width()};
            out << *piece++ << General{corners[corner].y / base.height()};
        }
        out << *piece;
    };
    forEachFrame(m_helper, writeFrame);
    return leftOut;
}

}
