#include "ListReport.h"

#include "Console.h"
#include "ExportRun.h"
#include "Options.h"

namespace
{

/// A rehearsed export is skipped, too, but has files.
bool isRehearsed(ExportRecord const& record)
{
    return record.status == ExportRecord::Skipped && !record.files.empty();
}

QString summaryOf(std::vector<ExportRecord> const& records, bool isDryRun)
{
    int written = 0;
    int skipped = 0;
    int failed = 0;
    for (ExportRecord const& record : records)
    {
        bool const isWritten = record.status == ExportRecord::Written || isRehearsed(record);
        written += isWritten ? 1 : 0;
        skipped += !isWritten && record.status == ExportRecord::Skipped ? 1 : 0;
        failed += record.status == ExportRecord::Failed ? 1 : 0;
    }
    return QStringLiteral("%1 %2, %3 skipped, %4 failed")
        .arg(written)
        .arg(isDryRun ? QStringLiteral("would be written") : QStringLiteral("written"))
        .arg(skipped)
        .arg(failed);
}

ExitStatus worstOf(std::vector<ExportRecord> const& records)
{
    ExitStatus worst = Success;
    for (ExportRecord const& record : records)
    {
        if (record.status == ExportRecord::Failed)
        {
            return Refused;
        }
        worst = record.exitStatus == SomeFramesFailed ? SomeFramesFailed : worst;
    }
    return worst;
}

}

void reportOneOfMany(ExportRecord record, QString const& source, Options const& options, Console& console)
{
    if (!source.isEmpty())
    {
        record.reason = source + QStringLiteral(", ") + record.format + QStringLiteral(": ") + record.reason;
    }
    report(record, !options.json, console);
    if (record.status == ExportRecord::Skipped && !isRehearsed(record) && !options.json)
    {
        QString const what = source.isEmpty() ? record.format + QStringLiteral(": ") : QString();
        console.note(QStringLiteral("skipped ") + what + record.reason);
    }
}

ExitStatus concludeMany(std::vector<ExportRecord> const& records, Options const& options, Console& console)
{
    if (options.json)
    {
        console.result(jsonBytes(toJson(records)));
    }
    else
    {
        console.note(summaryOf(records, options.writing.dryRun));
    }
    return worstOf(records);
}
