// Corner lists, for a spreadsheet: the user opens the file.
//
//   frame,x1,y1,x2,y2,x3,y3,x4,y4
//   1001,860,440,1060,440,860,640,1060,640
//
// Lower left, lower right, upper left, upper right; pixels, y up.

#include "CornerListExporter.h"

#include "Host/ExporterHelper.h"
#include "Writing/Frames.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"
#include "Writing/TextBuffer.h"
#include "Writing/Values.h"

using namespace Export;

Korvane::ExportedFiles CornerListExporter::exportTracking(KORV_ProjectManager& project, QString const& path,
                                                          unsigned int layerId, Anm::Context const& referenceFrame,
                                                          Options const& options) const
{
    Korvane::TrackingExporterHelper helper;
    setUpTrackingHelper(helper, project, layerId, referenceFrame.view(), options.framesToExport);
    helper.updateSurfacePoints(project, layerId, Anm::Context::Explicit(referenceFrame), options, nullptr);

    int failedCount = 0;
    auto const points = helper.surfacePoints();
    TextBuffer out(QStringLiteral("Export a layer with a shorter range."));
    out << "frame,x1,y1,x2,y2,x3,y3,x4,y4\n";
    forEachFrame(helper,
                 [&](int row, int frame)
                 {
                     double const corners[] = {points[row][0].x, points[row][0].y, points[row][1].x, points[row][1].y,
                                               points[row][2].x, points[row][2].y, points[row][3].x, points[row][3].y};
                     if (!areWritable(corners))
                     {
                         ++failedCount;
                         return;
                     }
                     out << Integer{frame + helper.baseClipOffset()};
                     for (double const number : corners)
                     {
                         out << ',' << General{number};
                     }
                     out << '\n';
                 });
    return fileResult(path, out.bytes(), failedCount, helper.failureMessages());
}
