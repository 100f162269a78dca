#pragma once
// From what the user chose and a format to exporters with their target paths.

#include "Core/ExportFunctions.h"
#include "FindFormat.h"
#include "Options.h"

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
};

/// Plans the exports of a format.
///
/// @param output what `-o` says; "-" is planned as a file of the suggested name
/// @throws Failure as wrong usage; two layers with one path are refused
ExportPlan planExports(Session& session, FormatEntry const& format, ExportChoices const& choices,
                       std::optional<QString> const& output, QStringList& warnings);

/// Warnings about options that the kind of the format doesn't know.
QStringList optionsWithoutEffect(FormatEntry const& format, QStringList const& given);
