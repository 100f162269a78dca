#pragma once

#include "Host/Anm.h"
#include "Host/Contour.h"
#include "Host/ExportEnums.h"
#include "Host/HostApi.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QVector>
#include <boost/shared_ptr.hpp>

#include <memory>
#include <vector>

class KORV_Layer;
class KORV_ProjectManager;

namespace Fnd
{
class IClipboard;
}

namespace Korvane
{

/// Base of every exporter of shape data.
class MARLO_HOST_API ShapeExporter
{
public:
    struct Options
    {
        std::vector<Anm::View> views;

        /// How the caller selected layers.
        ZN::LayerExportMode layerExportMode = ZN::SelectedLayer;
        QString productName;
        QString productVersion;

        /// From ExporterHelperBase::framesToExport.
        int framesToExport = 2147483647;
        int viewMode = 1;
    };

    virtual ~ShapeExporter();

    /// Exports the shapes of the layers that the options select.
    ///
    /// @param layerIds the layer for the modes that mean one layer
    /// @return path to content; an entry under ERROR_FILENAME is an error text
    virtual std::shared_ptr<QMap<QString, QByteArray>> exportShape(KORV_ProjectManager& project, QString const& path,
                                                                   QList<unsigned int> const& layerIds,
                                                                   Options const& options) const = 0;

    /// @param hostPresent whether the text goes from a plug-in to its host
    virtual void copyToClipboard(Fnd::IClipboard& clipboard, QString const& text, bool hostPresent) const;

    /// Key of an error text in the result of exportShape.
    static QString const ERROR_FILENAME;
};

/// Which layers and contours a selection reaches, from the top of the stack.
struct MARLO_HOST_API ShapeExportHelper
{
    static QList<boost::shared_ptr<Contour const>> getContoursToExport(KORV_ProjectManager const& project,
                                                                       ZN::LayerExportMode mode,
                                                                       QList<unsigned int> const& layerIds);

    static QVector<boost::shared_ptr<KORV_Layer const>> getLayersToExport(KORV_ProjectManager const& project,
                                                                          ZN::LayerExportMode mode,
                                                                          QList<unsigned int> const& layerIds);

    /// The motion of a layer, with the user's adjust offsets in it, at every frame of its
    /// range. Frames without data have those of the nearest tracked frame; a layer without
    /// any in the view stands still.
    static boost::shared_ptr<Contour::HomographyMap> buildHomogMap(KORV_ProjectManager const& project,
                                                                   KORV_Layer const& layer, Anm::View const& view);

    /// A host frame without tracking data of its own, and the tracked one whose motion it has.
    struct StandIn
    {
        int frame;
        int tracked;
    };

    /// Such frames of a layer's range, ascending; none of a layer that has no tracking data in
    /// the view at all.
    static QVector<StandIn> standIns(KORV_ProjectManager const& project, KORV_Layer const& layer,
                                     Anm::View const& view);

    /// The parts of the homographies of frames 0 to count - 1; what the map doesn't have
    /// stands still.
    static QVector<HomographyComponents> buildComponentsList(boost::shared_ptr<Contour::HomographyMap> const& map,
                                                             unsigned int count);
};

/// Writes contours as the host's own XML (".fxs"); docs/formats/glimmerset-shape.md
/// describes it.
class MARLO_HOST_API GlimmersetShapeExporter : public ShapeExporter
{
public:
    ~GlimmersetShapeExporter() override;

    std::shared_ptr<QMap<QString, QByteArray>> exportShape(KORV_ProjectManager& project, QString const& path,
                                                           QList<unsigned int> const& layerIds,
                                                           Options const& options) const override;
};

}
