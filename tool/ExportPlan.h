#pragma once
// From what the user chose and a format to exporters with their target paths.

#include "Core/ExporterWrapper.h"
#include "FormatList.h"
#include "Options.h"

#include <QString>
#include <QStringList>

#include <memory>
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
///         several layers is meant
std::vector<LayerChoice> chooseLayers(Session& session, ExportChoices const& choices, QStringList& warnings);

/// An exporter that makes its layer and view the current ones before it works, and
/// where its file goes.
struct PlannedExport
{
    std::shared_ptr<Export::ExporterWrapper> exporter;
    QString path;
};

/// The exports of a format.
///
/// @param output what `-o` says; "-" is planned as a file of the suggested name
/// @throws Failure as wrong usage; two layers with one path are refused
std::vector<PlannedExport> planExports(Session& session, FormatEntry const& format, ExportChoices const& choices,
                                       std::optional<QString> const& output, QStringList& warnings);

/// Warnings about options that the kind of the format doesn't know.
QStringList optionsWithoutEffect(FormatEntry const& format, QStringList const& given);
