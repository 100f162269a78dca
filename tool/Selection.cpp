#include "Selection.h"

#include "Failure.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Session.h"

#include <algorithm>

namespace
{

QStringList namesOf(std::vector<KORV_Layer const*> const& layers)
{
    QStringList names;
    for (KORV_Layer const* layer : layers)
    {
        names += layer->name();
    }
    return names;
}

[[noreturn]] void refuseMissed(QStringList const& names)
{
    throw Failure(Refused, QStringLiteral("--frames: there is no frame in that range of ") +
                               (names.size() == 1 ? QStringLiteral("layer ") : QStringLiteral("layers ")) +
                               quotedList(names));
}

LayerChoice layerByName(Session& session, QString const& name, QStringList& warnings)
{
    std::vector<KORV_Layer const*> const all = session.layers();
    auto const isNamed = [&](KORV_Layer const* layer) { return layer->name() == name; };
    auto const found = std::find_if(all.begin(), all.end(), isNamed);
    if (found == all.end() && session.missedLayers().contains(name))
    {
        refuseMissed({name});
    }
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
    if (session.missesCurrentLayer() || (all.empty() && !session.missedLayers().isEmpty()))
    {
        refuseMissed(session.missedLayers());
    }
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

}

std::vector<LayerChoice> chooseLayers(Session& session, ExportChoices const& choices, QStringList& warnings)
{
    if (choices.layer)
    {
        return {layerByName(session, *choices.layer, warnings)};
    }
    if ((choices.layers || choices.eachLayer) && !session.missedLayers().isEmpty())
    {
        if (session.layers().empty())
        {
            refuseMissed(session.missedLayers());
        }
        warnings += QStringLiteral("--frames leaves layers out that have no frame in it: ") +
                    quotedList(session.missedLayers());
    }
    if (!choices.eachLayer)
    {
        return {choices.layers ? layersByMode(session, *choices.layers) : currentOrOnlyLayer(session)};
    }
    std::vector<LayerChoice> each;
    QStringList const names = namesOf(session.layers());
    for (KORV_Layer const* layer : session.layers(choices.layers.value_or(ZN::AllLayers)))
    {
        // By name where that says which: formats that hold several layers take all that are
        // selected in the project for the current one.
        bool const isAlone = names.count(layer->name()) == 1;
        each.push_back({layer, isAlone ? Export::LayerSelection{ZN::SpecifiedLayer, layer->name()}
                                       : Export::LayerSelection{ZN::SelectedLayer, QString()}});
    }
    if (each.empty())
    {
        throw Failure(Refused, QStringLiteral("--each-layer: there is no layer to export"));
    }
    return each;
}

LayerChoice storedLayers(Session& session, Export::LayerSelection const& selection, QStringList& warnings)
{
    std::vector<KORV_Layer const*> const all = session.layers();
    if (std::optional<QString> const name = selection.specifiedLayer())
    {
        return namesOf(all).contains(*name) ? layerByName(session, *name, warnings) : LayerChoice{nullptr, selection};
    }
    LayerChoice choice = layersByMode(session, selection.mode);
    if (!choice.current && all.size() == 1)
    {
        choice.current = all.front();
    }
    return choice;
}

Unheard oneViewOfMany(Session& session, Anm::View const& view)
{
    return {QString(), QStringLiteral(": holds one view; \"") + session.project().views()->name(view) +
                           QStringLiteral("\" is exported, --view NAME exports another")};
}

ViewChoice chooseViews(Session& session, FormatEntry const& format, QStringList const& names, ExportRecord& record)
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
    if (choice.views.size() > 1 && !format.traits().honours.testFlag(Export::HonoursViews))
    {
        record.unheard.push_back(oneViewOfMany(session, choice.view));
    }
    return choice;
}
