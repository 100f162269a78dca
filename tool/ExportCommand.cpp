// `marlo-export export`

#include "Commands.h"
#include "Console.h"
#include "ExportPlan.h"
#include "ExportRun.h"
#include "Session.h"

namespace
{

/// What can be refused before the project is read.
FormatEntry checkedFormat(Options const& options)
{
    if (options.json && options.writing.output == QStringLiteral("-"))
    {
        throw usageError(QStringLiteral("--json and -o - would both write to stdout"));
    }
    return findFormat(options.format);
}

}

ExitStatus runExportCommand(Options const& options, Console& console)
{
    FormatEntry const format = checkedFormat(options);
    console.progress(0, 2, QStringLiteral("reading ") + options.project);
    Session session(options.project, options.choices.frames, format.isOfLayers() ? FramesOf::Layers : FramesOf::Scene);
    console.progress(1, 2, QStringLiteral("exporting ") + format.key());
    ExportRecord record = runExport(session, format, options.choices, options.writing, console);
    // What was asked for by name is missed.
    record.status = record.exitStatus == Refused ? ExportRecord::Failed : record.status;
    console.clearProgress();

    bool const isToStdout = options.writing.output == QStringLiteral("-");
    report(record, !options.json && !isToStdout, console);
    if (options.json)
    {
        console.result(jsonBytes(record.toJson()));
    }
    return record.exitStatus;
}
