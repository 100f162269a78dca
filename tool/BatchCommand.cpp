// `marlo-export batch`

#include "Commands.h"
#include "Console.h"
#include "ExportRun.h"
#include "ListReport.h"
#include "PresetFile.h"
#include "PresetPlan.h"
#include "Session.h"

namespace
{

/// The names to run, in that order.
QStringList chosenNames(Presets const& presets, QStringList names)
{
    for (QString const& name : names)
    {
        checkName(presets, name);
    }
    names.removeDuplicates();
    return names.isEmpty() ? namesOf(presets) : names;
}

std::vector<PlannedExport> planAll(Presets const& presets, QStringList const& names, PresetPlanner const& planner)
{
    std::vector<PlannedExport> exports;
    for (QString const& name : names)
    {
        for (Export::Preset::ExportInfo const& stored : presets.value(name).exports)
        {
            exports.push_back(planner.plan(name, stored));
        }
    }
    refuseSharedPaths(exports);
    return exports;
}

std::vector<ExportRecord> runPlanned(std::vector<PlannedExport>& exports, PresetPlanner const& planner,
                                     Session& session, Options const& options, Console& console)
{
    std::vector<ExportRecord> records;
    for (PlannedExport& planned : exports)
    {
        console.progress(static_cast<int>(records.size()), static_cast<int>(exports.size()), planned.label());
        if (planned.format)
        {
            planner.restorePlace();
            runPlan(session, *planned.format, planned.plan, options.writing, planned.record, console);
        }
        records.push_back(planned.record);
        reportOneOfMany(planned.record, QStringLiteral("preset \"") + planned.preset + QStringLiteral("\""), options,
                        console);
    }
    console.clearProgress();
    return records;
}

}

ExitStatus runBatch(Options const& options, Console& console)
{
    if (options.writing.output == QStringLiteral("-"))
    {
        throw usageError(QStringLiteral("batch: -o - isn't a folder"));
    }
    Presets const presets = readPresets(options.presets.file);
    QStringList const names = chosenNames(presets, options.presets.names);
    console.progress(0, 1, QStringLiteral("reading ") + options.project);
    Session session(options.project);
    PresetPlanner const planner(session, options.presets.file, options.writing);
    std::vector<PlannedExport> exports = planAll(presets, names, planner);
    return concludeMany(runPlanned(exports, planner, session, options, console), options, console);
}
