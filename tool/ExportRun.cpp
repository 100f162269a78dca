#include "ExportRun.h"

#include "Console.h"
#include "ExportPlan.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Session.h"
#include "WriteProvider.h"

#include <QFileInfo>

namespace
{

constexpr int MOST_LINES = 10;

bool isText(QByteArray const& bytes)
{
    return !bytes.contains('\0') && QString::fromUtf8(bytes).toUtf8() == bytes;
}

void checkStdout(FormatEntry const& format, ExportChoices const& choices)
{
    if (choices.eachLayer)
    {
        throw usageError(QStringLiteral("-o - takes one file; --each-layer makes one for each layer"));
    }
    if (format.format().numFiles() != 1)
    {
        throw usageError(QStringLiteral("-o - takes one text file; ") + format.key() + QStringLiteral(" makes ") +
                         (format.format().numFiles() == 0 ? QStringLiteral("a sequence of images")
                                                          : QString::number(format.format().numFiles())));
    }
}

void printFile(WriteProvider const& provider, ExportRecord& record, Console& console)
{
    if (provider.files().size() != 1 || !isText(provider.files().first()))
    {
        throw usageError(QStringLiteral("-o - takes one text file; ") + record.format +
                         (provider.files().size() == 1 ? QStringLiteral(" makes a binary one")
                                                       : QStringLiteral(" makes several files")));
    }
    QByteArray const bytes = provider.files().first();
    console.result(bytes);
    record.files.push_back({QStringLiteral("-"), bytes.size()});
}

void setWritten(ExportRecord& record)
{
    record.status = ExportRecord::Written;
    record.exitStatus = record.hasFailedFrames() ? SomeFramesFailed : Success;
    record.acceptGaps();
}

/// After the library has returned without an exception.
void conclude(WriteProvider const& provider, WritingChoices const& writing, ExportRecord& record, Console& console)
{
    if (provider.hasAbandoned())
    {
        throw Failure(Refused, QStringLiteral("nothing written, as frames failed (--strict)"));
    }
    if (provider.files().isEmpty())
    {
        throw Failure(Refused, record.messages.isEmpty() ? QStringLiteral("there is nothing to export")
                                                         : QStringLiteral("nothing could be exported"));
    }
    if (writing.dryRun)
    {
        for (auto file = provider.files().begin(); file != provider.files().end(); ++file)
        {
            record.files.push_back({file.key(), file.value().size()});
        }
        setWritten(record);
        record.status = ExportRecord::Skipped;
        record.reason = QStringLiteral("dry run");
        return;
    }
    if (writing.output == QStringLiteral("-"))
    {
        printFile(provider, record, console);
    }
    if (record.files.empty())
    {
        throw Failure(Refused, QStringLiteral("nothing written; the old files stay"));
    }
    setWritten(record);
}

void run(Session& session, FormatEntry const& format, ExportPlan const& plan, WritingChoices const& writing,
         ExportRecord& record, Console& console)
{
    // Formats with several files name them as they go.
    bool const pathsAreKnown = writing.output != QStringLiteral("-") && format.format().numFiles() == 1;
    for (Export::BatchItem const& item : plan.items)
    {
        if (pathsAreKnown)
        {
            checkTarget(item.path, writing, console);
        }
    }
    WriteProvider provider(writing, record, console);
    Export::exportBatch(plan.items, session.project(), provider);
    provider.finish();
    conclude(provider, writing, record, console);
}

}

void runPlan(Session& session, FormatEntry const& format, ExportPlan const& plan, WritingChoices const& writing,
             ExportRecord& record, Console& console)
{
    record.messagesAreFailures = format.kind() != Kind::Camera;
    record.countsMessages = format.kind() == Kind::Shape;
    record.acceptsGaps = writing.acceptGaps;
    try
    {
        if (plan.obstacle.isEmpty())
        {
            run(session, format, plan, writing, record, console);
            record.warnings += plan.losses;
        }
        else
        {
            record.status = ExportRecord::Skipped;
            record.reason = plan.obstacle;
        }
    }
    catch (...)
    {
        record.fail(currentFailure());
    }
    record.warnings += session.takeWarnings();
}

ExportRecord runExport(Session& session, FormatEntry const& format, ExportChoices const& choices,
                       WritingChoices const& writing, Console& console)
{
    ExportRecord record;
    record.format = format.key();
    try
    {
        if (writing.output == QStringLiteral("-"))
        {
            checkStdout(format, choices);
        }
        ExportPlan const plan = planExports(session, format, choices, writing, record);
        runPlan(session, format, plan, writing, record, console);
    }
    catch (...)
    {
        record.fail(currentFailure());
        record.warnings += session.takeWarnings();
    }
    return record;
}

void report(ExportRecord const& record, bool listsFiles, Console& console)
{
    for (int i = 0; i < qMin(MOST_LINES, record.messages.size()); ++i)
    {
        console.warning(record.messages[i]);
    }
    if (record.messages.size() > MOST_LINES)
    {
        console.warning(QStringLiteral("%1 more of these (--json lists all)").arg(record.messages.size() - MOST_LINES));
    }
    if (record.failedCount > 0)
    {
        console.warning(record.format + QStringLiteral(": %1 frames or items failed").arg(record.failedCount));
    }
    for (QString const& warning : record.allWarnings())
    {
        console.warning(warning);
    }
    for (QString const& notice : record.notices)
    {
        console.note(notice);
    }
    if (record.status == ExportRecord::Failed && !record.reason.isEmpty())
    {
        console.error(record.reason);
    }
    if (!listsFiles || console.isQuiet())
    {
        return;
    }
    for (ExportRecord::File const& file : record.files)
    {
        bool const isDryRun = record.status == ExportRecord::Skipped;
        QString const verb =
            QFileInfo::exists(file.path) ? QStringLiteral("would overwrite ") : QStringLiteral("would write ");
        console.result((isDryRun ? verb : QString()) + file.path);
    }
}
