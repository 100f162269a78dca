// `marlo-export all`

#include "Commands.h"
#include "Console.h"
#include "ExportRun.h"
#include "FormatOptions.h"
#include "ListReport.h"
#include "Selection.h"
#include "Session.h"

#include <algorithm>

namespace
{

/// Each format writes into its own folder.
WritingChoices writingTo(QString const& key, WritingChoices writing)
{
    bool const endsInSlash = writing.output->endsWith(QLatin1Char('/'));
    writing.output = *writing.output + (endsInSlash ? QString() : QStringLiteral("/")) + key + QLatin1Char('/');
    return writing;
}

/// Each format gets the options that it has.
ExportChoices choicesFor(FormatEntry const& format, ExportChoices choices)
{
    choices.formatOptions = assignmentsOf(format, choices.formatOptions);
    return choices;
}

void checkFormatOptions(std::vector<FormatEntry> const& formats, QStringList const& assignments)
{
    for (QString const& assignment : assignments)
    {
        if (std::all_of(formats.begin(), formats.end(),
                        [&](FormatEntry const& format) { return assignmentsOf(format, {assignment}).isEmpty(); }))
        {
            throw usageError(QStringLiteral("--option: no format has the option \"") + assignment +
                             QStringLiteral("\" (marlo-export formats --json lists all)"));
        }
    }
}

std::vector<ExportRecord> exportAll(Options const& options, Console& console)
{
    if (options.writing.output == QStringLiteral("-"))
    {
        throw usageError(QStringLiteral("all: -o - isn't a folder"));
    }
    std::vector<FormatEntry> const formats = formatsOfKind(options.kind);
    checkFormatOptions(formats, options.choices.formatOptions);
    int const total = static_cast<int>(formats.size());
    console.progress(0, total, QStringLiteral("reading ") + options.project);
    Session session(options.project);

    // A choice that says too little ends the command, not one format after the other.
    if (std::any_of(formats.begin(), formats.end(), [](FormatEntry const& format) { return format.isOfLayers(); }))
    {
        QStringList warnings;
        chooseLayers(session, options.choices, warnings);
    }
    session.views(options.choices.views);
    session.clipId(options.choices.clip);

    std::vector<ExportRecord> records;
    for (FormatEntry const& format : formats)
    {
        console.progress(static_cast<int>(records.size()), total, format.key());
        WritingChoices const writing = writingTo(format.key(), options.writing);
        records.push_back(runExport(session, format, choicesFor(format, options.choices), writing, console));
        reportOneOfMany(records.back(), QString(), options, console);
    }
    console.clearProgress();
    return records;
}

}

ExitStatus runAll(Options const& options, Console& console)
{
    return concludeMany(exportAll(options, console), options, console);
}
