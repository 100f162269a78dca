// Kestrelia 2D Tracker Data: the user opens the file in the matchmoving application. It is a
// project with one shot and no camera (docs/kestrelia-file.md), in which each layer is a
// group of four trackers:
//
//   kestrelia 1
//   name "Marlo Scene"
//   shot 1 "plate"
//     group 1 "Wall"
//     tracker 1 "Wall lower left"
//       group 1
//       image 1001 812.5 604.25
//     end
//   end

#include "Interchange/Kestrelia2DTrackersExporter.h"

#include "Host/KORV_Layer.h"
#include "Host/Rig3D.h"
#include "Interchange/parts/KestreliaNames.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"

namespace Export
{

namespace
{

using Layers = QVector<boost::shared_ptr<KORV_Layer const>>;

/// The layers that the caller selected, from the top of the stack. An application that has
/// selected none means the given one.
Layers layersOf(KORV_ProjectManager& project, unsigned int layerId, ZN::LayerExportMode mode)
{
    KORV_SelectionManager& stack = *project.sm();
    Layers layers;
    if (mode != ZN::SpecifiedLayer)
    {
        int const query = mode == ZN::SelectedLayer   ? Korvane::SelectedItems
                          : mode == ZN::VisibleLayers ? Korvane::VisibleItems
                                                      : static_cast<int>(mode);
        layers = stack.layers(QFlags<Korvane::ItemsQuery>(QFlag(query)));
    }
    bool const isOne = mode == ZN::SpecifiedLayer || mode == ZN::SelectedLayer;
    return layers.isEmpty() && isOne ? Layers{stack.findLayer(layerId, false)} : layers;
}

}

Kestrelia2DTrackersExporter::~Kestrelia2DTrackersExporter() = default;

Korvane::ExportedFiles Kestrelia2DTrackersExporter::exportTracking(KORV_ProjectManager& project, QString const& path,
                                                                   unsigned int layerId,
                                                                   Anm::Context const& referenceFrame,
                                                                   Options const& options) const
{
    setUpTrackingHelper(m_helper, project, layerId, referenceFrame.view(), options.framesToExport);
    Layers const layers = layersOf(project, layerId, options.layerExportMode);
    Korvane::ExportedFiles result;
    QByteArray const contents = exportScene(project, layers, result, path);
    if (!contents.isEmpty())
    {
        result.files.insert(path, contents);
    }
    return result;
}

QByteArray Kestrelia2DTrackersExporter::exportScene(KORV_ProjectManager& project, Layers const& layers,
                                                    Korvane::ExportedFiles& result, QString const& path) const
{
    Anm::View const view = project.currentView();
    Anm::ContextRange range;
    QStringList untracked;
    for (auto const& layer : layers)
    {
        Anm::ContextRange const own = Rig3D::layerFrameRange(*layer, view);
        range = range.united(own);
        if (own.isEmpty())
        {
            untracked += QStringLiteral("Layer \"%1\" has no tracking data").arg(layer->name());
        }
    }
    KORV_Clip const* const clip =
        layers.isEmpty() ? nullptr
                         : project.parameterManager()->getClip(layers.front()->trackingInputClipID(true, false, true));
    if (!clip)
    {
        appendFailures(result, path, {tr("Could not initialise Kestrelia project")});
        return {};
    }
    m_helper.setClip(*clip);
    Rig3D::KestreliaSetup setup(*clip, range, KestreliaLib::Config(), project.frameRate(),
                                static_cast<double>(project.frameOffset()));
    if (!setup.isValid())
    {
        appendFailures(result, path, {tr("Could not initialise Kestrelia project")});
        return {};
    }
    for (auto const& layer : layers)
    {
        Anm::ContextRange const own = Rig3D::layerFrameRange(*layer, view);
        if (!own.isEmpty())
        {
            setup.addLayerTrack(*layer, own);
        }
    }
    QByteArray const contents = setup.writeProject();
    appendFailures(result, path, untracked + setup.failureMessages());
    result.failedCount = setup.failedCount();
    if (QString const renamed = KestreliaNames::renamed(setup.clashingNames()); !renamed.isEmpty())
    {
        result.notices.push_back({QStringLiteral("DontShowKestreliaNamesMsg"), tr("Names in the project"), renamed});
    }
    return contents;
}

}
