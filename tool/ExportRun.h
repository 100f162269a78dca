#pragma once

#include "FindFormat.h"
#include "Options.h"
#include "Record.h"

class Console;
class Session;
struct ExportPlan;

/// Runs one export of a project, from the choices to the written files.
///
/// Nothing is written when a target exists and may not be replaced, when a folder
/// can't take its file, or with --strict when a frame failed.
///
/// @return what came of it; failures of any kind are in the record. A format that the
///         project has nothing for is skipped with the exit status of a refusal.
ExportRecord runExport(Session& session, FormatEntry const& format, ExportChoices const& choices,
                       WritingChoices const& writing, Console& console);

/// Runs what was planned for a format, as runExport() does; all that comes of it is put
/// into the record.
void runPlan(Session& session, FormatEntry const& format, ExportPlan const& plan, WritingChoices const& writing,
             ExportRecord& record, Console& console);

/// Tells people about a record, and with `listsFiles` lists its files on stdout.
void report(ExportRecord const& record, bool listsFiles, Console& console);
