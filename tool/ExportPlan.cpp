#include "ExportPlan.h"

#include "CameraViewsExporter.h"
#include "Core/LensExporter.h"
#include "Failure.h"
#include "FormatOptions.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "PlacedExporter.h"
#include "Selection.h"
#include "Session.h"
#include "TargetPath.h"

#include <QMap>
#include <QSet>

#include <algorithm>

namespace
{

Export::Preset::ExportInfo layerExport(Session& session, FormatEntry const& format, ExportChoices const& choices,
                                       LayerChoice const& layers, ViewChoice const& views)
{
    Export::Preset::ExportInfo info;
    info.format = format.key();
    if (format.kind() == Kind::Shape)
    {
        info.type = Export::Preset::ExportInfo::Shape;
        info.options = Export::UserShapeOptions{layers.selection, views.views};
        return info;
    }
    KORV_ProjectManager& project = session.project();
    Anm::Time const time = choices.referenceFrame ? Anm::Time::fromInt(session.hostFrame(*choices.referenceFrame))
                                                  : Export::suitableReferenceFrame(project, choices.track).time();
    info.type = Export::Preset::ExportInfo::Tracking;
    info.options =
        Export::UserTrackingOptions{choices.track,    choices.invert, choices.undistort, Anm::Context(time, views.view),
                                    layers.selection, views.views};
    return info;
}

std::shared_ptr<Export::ExporterWrapper> makeExporter(Session& session, FormatEntry const& format,
                                                      ExportChoices const& choices, LayerChoice const& layers,
                                                      ViewChoice const& views)
{
    QMap<QString, QVariant> const values = optionValues(format, choices.formatOptions);
    if (format.isOfLayers())
    {
        return Export::createExporter(layerExport(session, format, choices, layers, views), session.project());
    }
    if (format.kind() == Kind::Camera)
    {
        bool const holdsSeveral = format.format().flags().testFlag(Export::HoldsSeveralViews);
        return std::make_shared<CameraViewsExporter>(format, Export::UserCameraSolveOptions{choices.objects, values},
                                                     holdsSeveral ? views.views : std::vector<Anm::View>{views.view});
    }
    Export::LensDataFormat const& lens = format.as<Export::LensDataFormat>();
    if (!lens.customDataTypeName().isEmpty())
    {
        throw Failure(Refused, lens.displayName() + QStringLiteral(" needs data that this program can't give yet"));
    }
    return std::make_shared<Export::LensExporterWrapper>(session.clipId(choices.clip), std::any(), lens.displayName(),
                                                         Export::LensExporter::EXPORTERS_BY_FORMAT().value(lens));
}

/// Where the file of a choice goes; {layer} stands for the layer's name.
QString pathOf(std::optional<QString> output, ExportChoices const& choices, QString const& suggestion,
               LayerChoice const& layers, QString const& extension)
{
    if (!choices.eachLayer || !layers.current)
    {
        return targetPath(output, suggestion, extension);
    }
    QString const name = safeFileName(layers.current->name());
    if (output && !isFolder(*output) && !output->contains(LAYER_PLACEHOLDER))
    {
        throw usageError(QStringLiteral("-o with --each-layer needs {layer} in its name, or a folder: ") + *output);
    }
    if (output)
    {
        output->replace(LAYER_PLACEHOLDER, name);
    }
    return targetPath(output, name, extension);
}

void checkPaths(std::vector<Export::BatchItem> const& items)
{
    QSet<QString> paths;
    for (Export::BatchItem const& item : items)
    {
        if (paths.contains(item.path))
        {
            throw Failure(Refused, QStringLiteral("two layers would be written to ") + item.path +
                                       QStringLiteral("; give them different names"));
        }
        paths.insert(item.path);
    }
}

}

ExportPlan planExports(Session& session, FormatEntry const& format, ExportChoices const& choices,
                       std::optional<QString> const& output, QStringList& warnings)
{
    KORV_ProjectManager& project = session.project();
    ViewChoice const views = chooseViews(session, format, choices.views, warnings);
    std::vector<LayerChoice> const layerChoices =
        format.isOfLayers() ? chooseLayers(session, choices, warnings) : std::vector<LayerChoice>(1);
    std::optional<QString> const place = output == QStringLiteral("-") ? std::nullopt : output;
    auto const taken = std::make_shared<TakenPaths>(QStringLiteral("layers"));
    ExportPlan plan;
    for (LayerChoice const& layers : layerChoices)
    {
        // Reference frame and suggested name are those of the current layer.
        takePlace(project, layers.current, views.view);
        auto const exporter = makeExporter(session, format, choices, layers, views);
        QString const obstacle = obstacleOf(session, format, *exporter, layers, views.views);
        if (!obstacle.isEmpty())
        {
            warnings += choices.eachLayer ? QStringList(obstacle) : QStringList();
            plan.obstacle = obstacle;
            continue;
        }
        QString const path =
            pathOf(place, choices, exporter->filenameSuggestion(project), layers, format.format().extension());
        logExport(format, layers.current, path);
        plan.items.push_back({std::make_shared<PlacedExporter>(exporter, layers.current, views.view, taken),
                              Export::ExportFileInfo(), path});
    }
    checkPaths(plan.items);
    // Of many layers some may have nothing.
    plan.obstacle = plan.items.empty() ? plan.obstacle : QString();
    return plan;
}

QStringList optionsWithoutEffect(FormatEntry const& format, QStringList const& given)
{
    static QMap<QString, QList<Kind>> const kinds{{"--layer", {Kind::Tracking, Kind::Shape}},
                                                  {"--layers", {Kind::Tracking, Kind::Shape}},
                                                  {"--each-layer", {Kind::Tracking, Kind::Shape}},
                                                  {"--view", {Kind::Tracking, Kind::Shape, Kind::Camera}},
                                                  {"--track", {Kind::Tracking}},
                                                  {"--invert", {Kind::Tracking}},
                                                  {"--undistort", {Kind::Tracking}},
                                                  {"--reference-frame", {Kind::Tracking}},
                                                  {"--objects", {Kind::Camera}},
                                                  {"--clip", {Kind::Lens}}};
    QStringList warnings;
    for (QString const& option : given)
    {
        if (kinds.contains(option) && !kinds.value(option).contains(format.kind()))
        {
            warnings += option + QStringLiteral(" has no effect on ") + kindWord(format.kind()) +
                        QStringLiteral(" formats such as ") + format.key();
        }
    }
    return warnings;
}
