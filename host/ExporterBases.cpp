// Bodies of the bases of tracking and shape exporters, and of the shape selection.

#include "Host/ExporterHelper.h"
#include "Host/Fnd.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/ShapeExporter.h"
#include "Host/TrackingExporter.h"

namespace ZN
{

ProgressRange::~ProgressRange() = default;

}

namespace Korvane
{

TrackingExporter::TrackingExporter() = default;
TrackingExporter::TrackingExporter(TrackingExporter const&) = default;
TrackingExporter& TrackingExporter::operator=(TrackingExporter const&) = default;
TrackingExporter::~TrackingExporter() = default;

void TrackingExporter::copyToClipboard(Fnd::IClipboard& clipboard, QString const& text) const
{
    smartCopy(clipboard, text);
}

QString const ShapeExporter::ERROR_FILENAME = QStringLiteral("<error>");

ShapeExporter::~ShapeExporter() = default;

void ShapeExporter::copyToClipboard(Fnd::IClipboard& clipboard, QString const& text, bool) const
{
    smartCopy(clipboard, text);
}

QVector<boost::shared_ptr<KORV_Layer const>> ShapeExportHelper::getLayersToExport(KORV_ProjectManager const& project,
                                                                                  ZN::LayerExportMode mode,
                                                                                  QList<unsigned int> const& layerIds)
{
    QVector<boost::shared_ptr<KORV_Layer const>> chosen;
    QVector<boost::shared_ptr<KORV_Layer const>> const all = project.sm()->layers({});
    for (boost::shared_ptr<KORV_Layer const> const& layer : all)
    {
        bool const named = layerIds.contains(layer->numericID());
        bool const takes = mode == ZN::AllLayers || (mode == ZN::VisibleLayers ? !layer->isHidden(true) : named);
        if (takes)
        {
            chosen.push_back(layer);
        }
    }
    return chosen;
}

QList<boost::shared_ptr<Contour const>> ShapeExportHelper::getContoursToExport(KORV_ProjectManager const& project,
                                                                               ZN::LayerExportMode mode,
                                                                               QList<unsigned int> const& layerIds)
{
    QList<boost::shared_ptr<Contour const>> contours;
    QVector<boost::shared_ptr<KORV_Layer const>> const layers = getLayersToExport(project, mode, layerIds);
    for (boost::shared_ptr<KORV_Layer const> const& layer : layers)
    {
        contours.append(layer->activeContours());
    }
    return contours;
}

}
