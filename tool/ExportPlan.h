#pragma once
// From what the user chose and a format to exporters with their target paths.

#include "Core/ExportFunctions.h"
#include "ExportedParts.h"
#include "FindFormat.h"
#include "Options.h"
#include "Record.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class Session;

/// What is to be run for one format.
struct ExportPlan
{
    /// Each makes its layer and view the current ones before it works. Several with
    /// --each-layer.
    std::vector<Export::BatchItem> items;

    /// Why the project has nothing for the format; empty when it has.
    QString obstacle;

    /// What the format can't hold of the project.
    QStringList losses;
};

/// What is checked in the parts of an export beside what the format holds.
struct PartsCheck
{
    bool undistort = false;
    bool unsafeNames = false;

    /// Of camera formats.
    KV::CameraSolveExporter::ObjectsToExport objects = KV::CameraSolveExporter::AllObjects;

    /// Of lens formats.
    unsigned int clipId = 1;
};

/// Notes what a format can't hold of the parts, and warns of lenses that aren't there.
/// @throws Failure as a refusal of names that would leave their field, and of exports that are
///         much too large for the project
void checkParts(Session& session, FormatEntry const& format, ExportedParts const& parts, PartsCheck const& check,
                ExportPlan& plan, ExportRecord& record);

/// Warns where a mode reaches layers that aren't in the parts.
void tellOfLayersLeftOut(Session& session, ZN::LayerExportMode mode, LayerChoice const& layers,
                         ExportedParts const& parts, ExportRecord& record);

/// Plans the exports of a format.
///
/// @param writing its `-o` "-" is planned as a file of the suggested name
/// @param record gets warnings
/// @throws Failure as wrong usage; two layers with one path are refused, and names that would
///         leave their field
ExportPlan planExports(Session& session, FormatEntry const& format, ExportChoices const& choices,
                       WritingChoices const& writing, ExportRecord& record);
