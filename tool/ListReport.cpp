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

/// A line for an export: format, what came of it, how many files and bytes.
QString rowOf(ExportRecord const& record, int width, bool isDryRun)
{
    qint64 bytes = 0;
    for (ExportRecord::File const& file : record.files)
    {
        bytes += file.bytes;
    }
    static char const* const words[] = {"written", "skipped", "failed"};
    QString const word =
        isRehearsed(record) && isDryRun ? QStringLiteral("would be") : QLatin1String(words[record.status]);
    QString const row = record.format.leftJustified(width) + QStringLiteral("  ") + word.leftJustified(8);
    return record.files.empty() ? row.trimmed()
                                : row + QStringLiteral("%1 files%2 bytes").arg(record.files.size(), 5).arg(bytes, 12);
}

void summarize(std::vector<ExportRecord> const& records, bool isDryRun, Console& console)
{
    int width = 0;
    for (ExportRecord const& record : records)
    {
        width = qMax(width, record.format.size());
    }
    for (std::size_t i = 0; records.size() > 1 && i < records.size(); ++i)
    {
        console.note(rowOf(records[i], width, isDryRun));
    }
    console.note(summaryOf(records, isDryRun));
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
        summarize(records, options.writing.dryRun, console);
    }
    return worstOf(records);
}
