#include "ExportPlan.h"

#include "CameraViewsExporter.h"
#include "Core/ExportSize.h"
#include "Core/LensExporter.h"
#include "Failure.h"
#include "FormatOptions.h"
#include "Host/KORV_Exception.h"
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

void refuseHopelessSize(Session& session, FormatEntry const& format, ExportedParts const& parts,
                        PartsCheck const& check)
{
    Export::ExportScope const scope{parts.layers, parts.views.size(), check.objects, check.clipId};
    try
    {
        Export::requireExportSize(format, session.project(), scope, session.fileBytes(),
                                  QStringLiteral("Take fewer frames with --frames A-B, or fewer layers."));
    }
    catch (KORV_OperationFailed const& error)
    {
        throw Failure(Refused, format.key() + QStringLiteral(": ") + error.message());
    }
}

}

void tellOfLayersLeftOut(Session& session, ZN::LayerExportMode mode, LayerChoice const& layers,
                         ExportedParts const& parts, ExportRecord& record)
{
    std::vector<KORV_Layer const*> const reached = session.layers(mode);
    bool const areAllExported =
        std::all_of(reached.begin(), reached.end(),
                    [&](KORV_Layer const* layer)
                    { return std::find(parts.layers.begin(), parts.layers.end(), layer) != parts.layers.end(); });
    if (!areAllExported && layers.current)
    {
        record.unheard.push_back({QStringLiteral("--layers reaches layers that one export doesn't hold: only \"") +
                                      layers.current->name() + QStringLiteral("\" is in that of "),
                                  QStringLiteral("; --each-layer writes a file for each")});
    }
}

void checkParts(Session& session, FormatEntry const& format, ExportedParts const& parts, PartsCheck const& check,
                ExportPlan& plan, ExportRecord& record)
{
    if (!check.unsafeNames)
    {
        refuseUnsafeNames(session, format, parts);
    }
    refuseHopelessSize(session, format, parts, check);
    plan.losses = lossesOf(session, format, parts);
    QStringList clips;
    for (KORV_Layer const* layer : parts.layers)
    {
        LayerFacts const& facts = session.facts(*layer);
        clips += facts.hasLens || clips.contains(facts.clip) ? QStringList() : QStringList(facts.clip);
    }
    if (check.undistort && format.traits().honours.testFlag(Export::HonoursUndistort) && !clips.isEmpty())
    {
        record.unheard.push_back({QStringLiteral("--undistort has no effect on "),
                                  QStringLiteral("; no lens that distorts is on clip ") + quotedList(clips)});
    }
}

ExportPlan planExports(Session& session, FormatEntry const& format, ExportChoices const& choices,
                       WritingChoices const& writing, ExportRecord& record)
{
    KORV_ProjectManager& project = session.project();
    record.unheard = optionsWithoutEffect(format, choices.given);
    ViewChoice const views = chooseViews(session, format, choices.views, record);
    std::vector<LayerChoice> const layerChoices =
        format.isOfLayers() ? chooseLayers(session, choices, record.warnings) : std::vector<LayerChoice>(1);
    std::optional<QString> const place = writing.output == QStringLiteral("-") ? std::nullopt : writing.output;
    auto const taken = std::make_shared<TakenPaths>(QStringLiteral("layers"));
    ExportPlan plan;
    ExportedParts all;
    for (LayerChoice const& layers : layerChoices)
    {
        // Reference frame and suggested name are those of the current layer.
        takePlace(project, layers.current, views.view);
        auto const exporter = makeExporter(session, format, choices, layers, views);
        QString const obstacle = obstacleOf(session, format, *exporter, layers, views.views);
        if (!obstacle.isEmpty())
        {
            record.warnings += choices.eachLayer ? QStringList(obstacle) : QStringList();
            plan.obstacle = obstacle;
            continue;
        }
        ExportedParts const parts = partsOf(session, format, layers, views);
        all.layers.insert(all.layers.end(), parts.layers.begin(), parts.layers.end());
        all.views = parts.views;
        if (choices.layers && !choices.eachLayer)
        {
            tellOfLayersLeftOut(session, *choices.layers, layers, parts, record);
        }
        QString const path =
            pathOf(place, choices, exporter->filenameSuggestion(project), layers, format.format().extension());
        logExport(format, layers.current, path);
        plan.items.push_back({std::make_shared<PlacedExporter>(exporter, layers.current, views.view, taken),
                              Export::ExportFileInfo(), path});
    }
    checkPaths(plan.items);
    unsigned int const clipId = format.kind() == Kind::Lens ? session.clipId(choices.clip) : 0;
    checkParts(session, format, all, {choices.undistort, writing.unsafeNames, choices.objects, clipId}, plan, record);
    // Of many layers some may have nothing.
    plan.obstacle = plan.items.empty() ? plan.obstacle : QString();
    return plan;
}
