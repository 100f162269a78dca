#include "ExportPlan.h"

#include "Core/ExportFunctions.h"
#include "Core/LensExporter.h"
#include "Failure.h"
#include "FormatOptions.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Session.h"
#include "TargetPath.h"
#include "marlohost/ProjectFile.h"

#include <QMap>
#include <QSet>

#include <algorithm>

namespace
{

/// Makes a layer and a view the current ones, then leaves the work to another exporter.
class ExporterInPlace : public Export::ExporterWrapper
{
public:
    /// @param taken paths that other exporters of the plan gave files for
    ExporterInPlace(std::shared_ptr<Export::ExporterWrapper> inner, KORV_Layer const* layer, Anm::View const& view,
                    std::shared_ptr<QSet<QString>> taken)
        : m_inner(std::move(inner)), m_layerId(layer ? layer->numericID() : 0), m_view(view), m_taken(std::move(taken))
    {
    }

    std::pair<bool, std::optional<char const*>> isExportPossible(KORV_ProjectManager& project) const override
    {
        takePlace(project);
        return m_inner->isExportPossible(project);
    }

    Korvane::ExportedFiles getExportResult(KORV_ProjectManager& project, QString const& path) const override
    {
        takePlace(project);
        Korvane::ExportedFiles result = m_inner->getExportResult(project, path);
        for (QString const& file : result.files.keys())
        {
            if (m_taken->contains(file))
            {
                throw Failure(Refused, QStringLiteral("two layers would be written to ") + file);
            }
            m_taken->insert(file);
        }
        return result;
    }

    void setClipboardText(Fnd::IClipboard& clipboard, QString const& text) const override
    {
        m_inner->setClipboardText(clipboard, text);
    }

    QString const& formatDisplayName() const override
    {
        return m_inner->formatDisplayName();
    }

    QString filenameSuggestion(KORV_ProjectManager const& project) const override
    {
        return m_inner->filenameSuggestion(project);
    }

private:
    void takePlace(KORV_ProjectManager& project) const
    {
        if (m_layerId != 0)
        {
            MarloHost::setCurrentLayer(project, m_layerId);
        }
        MarloHost::setCurrentView(project, m_view);
    }

    std::shared_ptr<Export::ExporterWrapper> m_inner;
    unsigned int m_layerId;
    Anm::View m_view;
    std::shared_ptr<QSet<QString>> m_taken;
};

QString nameOf(KORV_Layer const* layer)
{
    return static_cast<ZN::Layer const*>(layer)->name();
}

QStringList namesOf(std::vector<KORV_Layer const*> const& layers)
{
    QStringList names;
    for (KORV_Layer const* layer : layers)
    {
        names += nameOf(layer);
    }
    return names;
}

LayerChoice layerByName(Session& session, QString const& name, QStringList& warnings)
{
    std::vector<KORV_Layer const*> const all = session.layers();
    auto const isNamed = [&](KORV_Layer const* layer) { return nameOf(layer) == name; };
    auto const found = std::find_if(all.begin(), all.end(), isNamed);
    if (found == all.end())
    {
        throw usageError(QStringLiteral("--layer: there is no layer \"") + name + QStringLiteral("\"; found ") +
                         quotedList(namesOf(all)));
    }
    if (std::count_if(all.begin(), all.end(), isNamed) > 1)
    {
        warnings +=
            QStringLiteral("several layers are called \"") + name + QStringLiteral("\"; the topmost is exported");
    }
    return {*found, {ZN::SpecifiedLayer, name}};
}

/// Formats that hold one layer take the current one, whatever the mode.
LayerChoice layersByMode(Session& session, ZN::LayerExportMode mode)
{
    KORV_Layer const* current = session.project().currentLayer();
    std::vector<KORV_Layer const*> const reached = session.layers(mode);
    if (!current && !reached.empty())
    {
        current = reached.front();
    }
    return {current, {mode, QString()}};
}

LayerChoice currentOrOnlyLayer(Session& session)
{
    KORV_Layer const* current = session.project().currentLayer();
    std::vector<KORV_Layer const*> const all = session.layers();
    if (!current && all.size() > 1)
    {
        throw usageError(QStringLiteral("no layer is current; choose one with --layer, or --layers: ") +
                         quotedList(namesOf(all)));
    }
    if (!current && !all.empty())
    {
        current = all.front();
    }
    return {current, {ZN::SelectedLayer, QString()}};
}

/// Not empty: the views to write, that of formats with one view in front of all
/// others in `view`.
struct ViewChoice
{
    std::vector<Anm::View> views;
    Anm::View view;
};

ViewChoice chooseViews(Session& session, FormatEntry const& format, QStringList const& names, QStringList& warnings)
{
    Anm::View const current = session.project().currentView();
    ViewChoice choice{session.views(names), current};
    if (choice.views.empty())
    {
        choice.views = {current};
    }
    if (std::find(choice.views.begin(), choice.views.end(), current) == choice.views.end())
    {
        choice.view = choice.views.front();
    }
    if (choice.views.size() > 1 && !format.format().flags().testFlag(Export::HoldsSeveralViews))
    {
        warnings += format.key() + QStringLiteral(" holds one view; \"") +
                    session.project().views()->name(choice.view) + QStringLiteral("\" is exported");
    }
    return choice;
}

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
        Export::Preset::ExportInfo info;
        info.format = format.key();
        info.type = Export::Preset::ExportInfo::Camera;
        info.options = Export::UserCameraSolveOptions{choices.objects, values};
        return Export::createExporter(info, session.project());
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
    QString const name = safeFileName(nameOf(layers.current));
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

void checkPaths(std::vector<PlannedExport> const& exports)
{
    QStringList paths;
    for (PlannedExport const& planned : exports)
    {
        if (paths.contains(planned.path))
        {
            throw Failure(Refused, QStringLiteral("two layers would be written to ") + planned.path +
                                       QStringLiteral("; give them different names"));
        }
        paths += planned.path;
    }
}

}

std::vector<LayerChoice> chooseLayers(Session& session, ExportChoices const& choices, QStringList& warnings)
{
    if (choices.layer)
    {
        return {layerByName(session, *choices.layer, warnings)};
    }
    if (!choices.eachLayer)
    {
        return {choices.layers ? layersByMode(session, *choices.layers) : currentOrOnlyLayer(session)};
    }
    std::vector<LayerChoice> each;
    for (KORV_Layer const* layer : session.layers(choices.layers.value_or(ZN::AllLayers)))
    {
        each.push_back({layer, {ZN::SelectedLayer, QString()}});
    }
    if (each.empty())
    {
        throw Failure(Refused, QStringLiteral("--each-layer: there is no layer to export"));
    }
    return each;
}

std::vector<PlannedExport> planExports(Session& session, FormatEntry const& format, ExportChoices const& choices,
                                       std::optional<QString> const& output, QStringList& warnings)
{
    KORV_ProjectManager& project = session.project();
    ViewChoice const views = chooseViews(session, format, choices.views, warnings);
    std::vector<LayerChoice> const layerChoices =
        format.isOfLayers() ? chooseLayers(session, choices, warnings) : std::vector<LayerChoice>(1);
    std::optional<QString> const place = output == QStringLiteral("-") ? std::nullopt : output;
    auto const taken = std::make_shared<QSet<QString>>();
    std::vector<PlannedExport> exports;
    for (LayerChoice const& layers : layerChoices)
    {
        // Reference frame and suggested name are those of the current layer.
        if (layers.current)
        {
            MarloHost::setCurrentLayer(project, layers.current->numericID());
        }
        auto const inner = makeExporter(session, format, choices, layers, views);
        QString const path =
            pathOf(place, choices, inner->filenameSuggestion(project), layers, format.format().extension());
        exports.push_back({std::make_shared<ExporterInPlace>(inner, layers.current, views.view, taken), path});
    }
    checkPaths(exports);
    return exports;
}

QStringList optionsWithoutEffect(FormatEntry const& format, QStringList const& given)
{
    static QMap<QString, QList<Kind>> const kinds{{"--layer", {Kind::Tracking, Kind::Shape}},
                                                  {"--layers", {Kind::Tracking, Kind::Shape}},
                                                  {"--each-layer", {Kind::Tracking, Kind::Shape}},
                                                  {"--view", {Kind::Tracking, Kind::Shape}},
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
