#include "Core/ExporterWrapper.h"

#include "Core/ExportFunctions.h"
#include "Core/ExporterFactories.h"
#include "Core/FormatList.h"
#include "Core/LensExporter.h"
#include "Core/operations/ShapeGaps.h"
#include "Host/CameraSolveExporter.h"
#include "Host/ExporterHelper.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/Product.h"
#include "Host/Scene3D.h"
#include "Host/ShapeExporter.h"
#include "Host/TrackingExporter.h"
#include "Writing/Results.h"

#include <QFileInfo>
#include <QList>

#include <stdexcept>

namespace Export
{

namespace
{

using Possibility = std::pair<bool, std::optional<char const*>>;

constexpr char NO_SUCH_LAYER[] = "Layer with specified name does not exist in this project.";

Possibility possibleIf(bool condition, char const* reasonAgainst)
{
    return condition ? Possibility(true, std::nullopt) : Possibility(false, reasonAgainst);
}

/// Whether the selection reaches any layer.
Possibility reachesLayers(KORV_ProjectManager& project, LayerSelection const& selection)
{
    switch (selection.mode)
    {
    case ZN::SelectedLayer:
        return possibleIf(project.currentLayer() != nullptr, "No selected layer");
    case ZN::VisibleLayers:
        return possibleIf(projectHasVisibleLayers(project), "No visible layers");
    case ZN::AllLayers:
        return possibleIf(project.sm()->hasLayers(), "No layers");
    case ZN::SpecifiedLayer:
        return possibleIf(!project.sm()->findLayers(selection.layerName, false).isEmpty(), NO_SUCH_LAYER);
    }
    return Possibility(true, std::nullopt);
}

/// The layer that modes mean which concern one: the specified or the current one.
unsigned int layerIdOf(KORV_ProjectManager const& project, LayerSelection const& selection)
{
    std::optional<QString> const name = selection.specifiedLayer();
    if (!name)
    {
        return project.toolManager()->currentLayerID();
    }
    for (boost::shared_ptr<KORV_Layer const> const& layer : project.sm()->layers({}))
    {
        if (layer->name() == *name)
        {
            return layer->numericID();
        }
    }
    throw std::runtime_error(NO_SUCH_LAYER);
}

QString projectBaseName(KORV_ProjectManager const& project)
{
    return QFileInfo(project.projectFilePath()).completeBaseName();
}

}

ExporterWrapper::~ExporterWrapper() = default;

// Tracking

TrackingExporterWrapper::TrackingExporterWrapper(std::shared_ptr<Korvane::TrackingExporter> exporter,
                                                 UserTrackingOptions const& options, bool wrapperCapability,
                                                 QString const& displayName)
    : m_options(options),
      m_wrapperCapability(wrapperCapability),
      m_displayName(displayName),
      m_exporter(std::move(exporter))
{
}

Possibility TrackingExporterWrapper::isExportPossible(KORV_ProjectManager& project) const
{
    return reachesLayers(project, m_options.layerSelection);
}

Korvane::ExportedFiles TrackingExporterWrapper::getExportResult(KORV_ProjectManager& project, QString const& path) const
{
    Korvane::TrackingExporter::Options options;
    options.invert = m_options.invert;
    options.trackingOption = m_options.trackingOption;
    options.layerExportMode = m_options.layerSelection.mode;
    options.undistort = m_options.undistort;
    options.framesToExport = Korvane::ExporterHelperBase::framesToExport(m_options.trackingOption);
    options.views = m_options.viewsToExport;

    Anm::Context const referenceFrame = m_options.referenceFrame.time().isValid()
                                            ? m_options.referenceFrame
                                            : suitableReferenceFrame(project, m_options.trackingOption);
    unsigned int const layerId = layerIdOf(project, m_options.layerSelection);
    return m_exporter->exportTracking(project, path, layerId, referenceFrame, options);
}

void TrackingExporterWrapper::setClipboardText(Fnd::IClipboard& clipboard, QString const& text) const
{
    m_exporter->copyToClipboard(clipboard, text);
}

QString const& TrackingExporterWrapper::formatDisplayName() const
{
    return m_displayName;
}

QString TrackingExporterWrapper::filenameSuggestion(KORV_ProjectManager const& project) const
{
    return Export::filenameSuggestion(project, m_options.layerSelection);
}

// Shapes

ShapeExporterWrapper::ShapeExporterWrapper(UserShapeOptions const& options, ShapeDataFormat const& format,
                                           bool hostPresent, std::shared_ptr<Korvane::ShapeExporter> exporter)
    : m_options(options), m_format(format), m_hostPresent(hostPresent), m_exporter(std::move(exporter))
{
}

Possibility ShapeExporterWrapper::isExportPossible(KORV_ProjectManager& project) const
{
    Possibility const layers = reachesLayers(project, m_options.layerSelection);
    if (!layers.first)
    {
        return layers;
    }
    QList<unsigned int> const layerIds = {layerIdOf(project, m_options.layerSelection)};
    // Exporters take the default view where none is named.
    std::vector<Anm::View> const views =
        m_options.viewsToExport.empty() ? std::vector<Anm::View>{Anm::View::defaultView()} : m_options.viewsToExport;
    for (boost::shared_ptr<Korvane::Contour const> const& contour :
         Korvane::ShapeExportHelper::getContoursToExport(project, m_options.layerSelection.mode, layerIds))
    {
        for (Anm::View const& view : views)
        {
            if (contour->isVeilML(view))
            {
                return Possibility(false, "Exporting shape data from layers with Veil ML contours is not supported.");
            }
        }
    }
    return layers;
}

Korvane::ExportedFiles ShapeExporterWrapper::getExportResult(KORV_ProjectManager& project, QString const& path) const
{
    int const framesToExport = Korvane::ExporterHelperBase::framesToExport(boost::none);
    unsigned int const layerId = layerIdOf(project, m_options.layerSelection);
    std::shared_ptr<Korvane::ShapeExporter> const exporter = ShapeExporterFactory::getExporter(m_format, project);
    if (!exporter)
    {
        throw std::logic_error("No exporter for format");
    }

    Korvane::ShapeExporter::Options options;
    options.views = m_options.viewsToExport;
    options.layerExportMode = m_options.layerSelection.mode;
    options.productName = Product::name();
    options.productVersion = Product::longVersion();
    options.framesToExport = framesToExport;
    options.viewMode = 1;
    std::shared_ptr<QMap<QString, QByteArray>> const exported =
        exporter->exportShape(project, path, {layerId}, options);

    Korvane::ExportedFiles result;
    for (auto entry = exported->constBegin(); entry != exported->constEnd(); ++entry)
    {
        if (entry.key() != Korvane::ShapeExporter::ERROR_FILENAME)
        {
            result.files.insert(entry.key(), entry.value());
            continue;
        }
        ++result.failedCount;
        if (!entry.value().isEmpty())
        {
            result.messages.append(QStringLiteral("%1: %2").arg(path, QString::fromUtf8(entry.value())));
        }
    }
    // One place tells of gaps for the exporters of all formats, the host's own among them.
    bool const holdsViews = FormatEntry(m_format).traits().honours.testFlag(HonoursViews);
    std::vector<Anm::View> views =
        options.views.empty() ? std::vector<Anm::View>{Anm::View::defaultView()} : options.views;
    views.resize(holdsViews ? views.size() : 1, views.front());
    appendFailures(
        result, path,
        standInFrames(project,
                      Korvane::ShapeExportHelper::getLayersToExport(project, options.layerExportMode, {layerId}),
                      views));
    return result;
}

void ShapeExporterWrapper::setClipboardText(Fnd::IClipboard& clipboard, QString const& text) const
{
    m_exporter->copyToClipboard(clipboard, text, m_hostPresent);
}

QString const& ShapeExporterWrapper::formatDisplayName() const
{
    return m_format.displayName();
}

QString ShapeExporterWrapper::filenameSuggestion(KORV_ProjectManager const& project) const
{
    return Export::filenameSuggestion(project, m_options.layerSelection);
}

// Camera solves

CameraSolveExporterWrapper::CameraSolveExporterWrapper(UserCameraSolveOptions const& options,
                                                       bool fileNameFollowsLayers, QString const& displayName,
                                                       std::shared_ptr<KV::CameraSolveExporter> const& exporter)
    : m_customData(options.customData),
      m_objectsToExport(options.objectsToExport),
      m_fileNameFollowsLayers(fileNameFollowsLayers),
      m_displayName(displayName),
      m_exporter(exporter)
{
}

Possibility CameraSolveExporterWrapper::isExportPossible(KORV_ProjectManager& project) const
{
    ZN::Camera3DParameterSet const* camera = project.scene3DParameters().cameraParameters(0);
    return possibleIf(camera && camera->solved().value(Anm::View::defaultView()) != 0, "No camera data.");
}

Korvane::ExportedFiles CameraSolveExporterWrapper::getExportResult(KORV_ProjectManager& project,
                                                                   QString const& path) const
{
    Anm::View const view = Anm::View::defaultView();
    Anm::Context const context(project.currentFrame().time(), view, Anm::ProxyScale::Full);

    KV::ExportSpec spec;
    spec.layers = KV::Layers::FilterByPoints();
    spec.referenceContext = &context;
    spec.views = {view};
    spec.framesToExport = Korvane::ExporterHelperBase::framesToExport(ZN_TRACKING_OPTION_ADJUSTED);
    spec.customData = m_customData;
    return m_exporter->exportCameraSolve(project, path, spec, m_objectsToExport);
}

void CameraSolveExporterWrapper::setClipboardText(Fnd::IClipboard& clipboard, QString const& text) const
{
    m_exporter->copyToClipboard(clipboard, text);
}

QString const& CameraSolveExporterWrapper::formatDisplayName() const
{
    return m_displayName;
}

QString CameraSolveExporterWrapper::filenameSuggestion(KORV_ProjectManager const& project) const
{
    return m_fileNameFollowsLayers ? Export::filenameSuggestion(project, {ZN::AllLayers, QString()})
                                   : projectBaseName(project);
}

// Lenses

LensExporterWrapper::LensExporterWrapper(unsigned int clipId, std::any const& userData, QString const& displayName,
                                         boost::shared_ptr<LensExporter const> const& exporter)
    : m_clipId(clipId), m_userData(userData), m_displayName(displayName), m_exporter(exporter)
{
}

Possibility LensExporterWrapper::isExportPossible(KORV_ProjectManager& project) const
{
    return possibleIf(project.fm()->hasClip(m_clipId), "Invalid calibration clip");
}

Korvane::ExportedFiles LensExporterWrapper::getExportResult(KORV_ProjectManager& project, QString const& path) const
{
    Korvane::ExportedFiles result;
    result.files.insert(path, m_exporter->getExportedData(project, m_clipId, m_userData).toUtf8());
    return result;
}

void LensExporterWrapper::setClipboardText(Fnd::IClipboard& clipboard, QString const& text) const
{
    m_exporter->copyToClipboard(clipboard, text);
}

QString const& LensExporterWrapper::formatDisplayName() const
{
    return m_displayName;
}

QString LensExporterWrapper::filenameSuggestion(KORV_ProjectManager const& project) const
{
    return projectBaseName(project);
}

}
