#include "Host/ShapeExporter.h"

#include "Host/ExporterHelper.h"
#include "Host/Fnd.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"

namespace Korvane
{

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
