#pragma once
// Which layers and views of a project an export takes.

#include "Core/UserOptions.h"
#include "FindFormat.h"
#include "Options.h"
#include "Record.h"

#include <QStringList>

#include <vector>

class KORV_Layer;
class Session;

/// Layers that one export takes together.
struct LayerChoice
{
    /// The layer to be current; null where the project has none that could be.
    KORV_Layer const* current = nullptr;
    Export::LayerSelection selection;
};

/// The layers of an export; one choice, or with --each-layer one for each layer.
///
/// @param warnings gets a line where the choice could have meant something else
/// @throws Failure as wrong usage for an unknown name, or when nothing says which of
///         several layers is meant; as a refusal when --frames misses what was chosen
std::vector<LayerChoice> chooseLayers(Session& session, ExportChoices const& choices, QStringList& warnings);

/// The layers that a stored selection reaches; no current layer when it names one that
/// the project lacks.
LayerChoice storedLayers(Session& session, Export::LayerSelection const& selection, QStringList& warnings);

struct ViewChoice
{
    /// The views to write; never empty.
    std::vector<Anm::View> views;

    /// That of formats with one view: the current one if it was chosen, else the first.
    Anm::View view;
};

/// @param names from the command line; empty means the current view
/// @param record is told when a format with one view is given several
/// @throws Failure as wrong usage for an unknown name
ViewChoice chooseViews(Session& session, FormatEntry const& format, QStringList const& names, ExportRecord& record);

/// That of several views one is exported.
Unheard oneViewOfMany(Session& session, Anm::View const& view);
