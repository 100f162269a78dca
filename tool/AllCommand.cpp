// `marlo-export all`

#include "Commands.h"
#include "Console.h"
#include "ExportRun.h"
#include "FormatOptions.h"
#include "ListReport.h"
#include "Selection.h"
#include "Session.h"
#include "WriteProvider.h"

#include <algorithm>
#include <memory>

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

/// The projects to export: one for all formats, unless --frames means layers to some and the
/// whole project to others.
class Sessions
{
public:
    explicit Sessions(Options const& options) : m_options(options)
    {
    }

    Session& of(FormatEntry const& format)
    {
        bool const wantsScene = m_options.choices.frames && !format.isOfLayers();
        std::unique_ptr<Session>& session = wantsScene ? m_scene : m_layers;
        if (!session)
        {
            session = std::make_unique<Session>(m_options.project, m_options.choices.frames,
                                                wantsScene ? FramesOf::Scene : FramesOf::Layers);
        }
        return *session;
    }

private:
    Options const& m_options;
    std::unique_ptr<Session> m_layers;
    std::unique_ptr<Session> m_scene;
};

/// Tells of choices without effect once, not format by format.
void tellUnheard(std::vector<FormatEntry> const& formats, std::vector<ExportRecord> const& records, Console& console)
{
    std::vector<FormatEntry> fed;
    std::vector<std::vector<Unheard>> unheard;
    for (std::size_t i = 0; i < records.size(); ++i)
    {
        bool const isSkipped = records[i].status == ExportRecord::Skipped && records[i].files.empty();
        if (!isSkipped)
        {
            fed.push_back(formats[i]);
            unheard.push_back(records[i].unheard);
        }
    }
    for (QString const& line : unheardByMany(fed, unheard))
    {
        console.warning(line);
    }
}

std::vector<ExportRecord> exportAll(Options const& options, Console& console)
{
    if (options.writing.output == QStringLiteral("-"))
    {
        throw usageError(QStringLiteral("all: -o - isn't a folder"));
    }
    checkWorkingFolder(*options.writing.output);
    std::vector<FormatEntry> const formats = formatsOfKind(options.kind);
    checkFormatOptions(formats, options.choices.formatOptions);
    int const total = static_cast<int>(formats.size());
    console.progress(0, total, QStringLiteral("reading ") + options.project);
    Sessions sessions(options);

    // A choice that says too little ends the command, not one format after the other.
    auto const ofLayers =
        std::find_if(formats.begin(), formats.end(), [](FormatEntry const& format) { return format.isOfLayers(); });
    if (ofLayers != formats.end())
    {
        QStringList warnings;
        chooseLayers(sessions.of(*ofLayers), options.choices, warnings);
    }
    for (FormatEntry const& format : formats)
    {
        sessions.of(format).views(options.choices.views);
        sessions.of(format).clipId(options.choices.clip);
    }

    std::vector<ExportRecord> records;
    for (FormatEntry const& format : formats)
    {
        console.progress(static_cast<int>(records.size()), total, format.key());
        WritingChoices const writing = writingTo(format.key(), options.writing);
        records.push_back(
            runExport(sessions.of(format), format, choicesFor(format, options.choices), writing, console));
        ExportRecord told = records.back();
        told.unheard.clear();
        reportOneOfMany(told, QString(), options, console);
    }
    console.clearProgress();
    tellUnheard(formats, records, console);
    return records;
}

}

ExitStatus runAll(Options const& options, Console& console)
{
    return concludeMany(exportAll(options, console), options, console);
}
